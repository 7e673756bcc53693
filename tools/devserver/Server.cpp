// SPDX-License-Identifier: Apache-2.0
#include <tools/devserver/Server.h>

#include <boost/asio/buffer.hpp>
#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/tcp.hpp>
#include <boost/asio/signal_set.hpp>
#include <boost/asio/ssl/context.hpp>
#include <boost/asio/steady_timer.hpp>
#include <boost/asio/write.hpp>
#include <boost/beast/core/flat_buffer.hpp>
#include <boost/beast/core/string.hpp>
#include <boost/beast/core/tcp_stream.hpp>
#include <boost/beast/http/empty_body.hpp>
#include <boost/beast/http/message.hpp>
#include <boost/beast/http/parser.hpp>
#include <boost/beast/http/read.hpp>
#include <boost/beast/http/string_body.hpp>
#include <boost/beast/http/write.hpp>
#include <boost/beast/ssl/ssl_stream.hpp>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <csignal>
#include <functional>
#include <sstream>
#include <stdexcept>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>

namespace vorna::devserver {
namespace {

namespace asio = boost::asio;
namespace beast = boost::beast;
namespace http = boost::beast::http;
namespace ssl = boost::asio::ssl;
using boost::system::error_code;
using tcp = asio::ip::tcp;

constexpr std::chrono::seconds handshakeTimeout{30};
constexpr std::chrono::seconds idleTimeout{120};
constexpr std::chrono::seconds bodyTimeout{600};   // for the whole body of a request
constexpr std::chrono::seconds chunkTimeout{120};  // for one chunk of an answer
constexpr std::chrono::seconds closeTimeout{2};
constexpr std::uint64_t mostBodyBytes = 64ULL * 1024 * 1024;
constexpr std::uint32_t mostHeaderBytes = 64 * 1024;
constexpr std::size_t chunkBytes = 64UL * 1024;

using PlainStream = beast::tcp_stream;
using TlsStream = beast::ssl_stream<beast::tcp_stream>;

// The parts of the server that connections need.
struct Host {
    Router& router;
    Statistics& statistics;
    std::function<void()> stop;
};

// One client's connection, from the handshake to the shutdown. It lives as long as an operation on it is
// pending.
template <class Stream>
class Connection : public std::enable_shared_from_this<Connection<Stream>> {
  public:
    template <class... Arguments>
    Connection(const Host& host, bool fromLoopback, tcp::socket socket, Arguments&... arguments)
        : host_(host),
          fromLoopback_(fromLoopback),
          stream_(std::move(socket), arguments...),
          timer_(stream_.get_executor()) {
        host_.statistics.connectionOpened();
    }

    Connection(const Connection&) = delete;
    Connection(Connection&&) = delete;
    Connection& operator=(const Connection&) = delete;
    Connection& operator=(Connection&&) = delete;

    ~Connection() { host_.statistics.connectionClosed(); }

    void start() {
        if constexpr (std::is_same_v<Stream, TlsStream>) {
            lowest().expires_after(handshakeTimeout);
            stream_.async_handshake(ssl::stream_base::server,
                                    continuing([](Connection& self) { self.readRequest(); }));
        } else {
            readRequest();
        }
    }

  private:
    // A handler that continues with `next` if the operation succeeded, and otherwise ends the connection.
    template <class Next>
    auto continuing(Next next) {
        return [self = this->shared_from_this(), next](error_code error, auto... /*results*/) {
            if (!error) {
                next(*self);
            }
        };
    }

    beast::tcp_stream& lowest() { return beast::get_lowest_layer(stream_); }

    void readRequest() {
        outcome_ = Outcome{};
        parser_.emplace();
        parser_->body_limit(mostBodyBytes);
        parser_->header_limit(mostHeaderBytes);
        lowest().expires_after(idleTimeout);
        http::async_read_header(
            stream_, buffer_, *parser_, [self = this->shared_from_this()](error_code error, std::size_t) {
                if (error) {
                    self->readFailed(error);
                } else if (beast::iequals(self->parser_->get()[http::field::expect], "100-continue")) {
                    self->sendContinue();
                } else {
                    self->readBody();
                }
            });
    }

    void sendContinue() {
        static constexpr std::string_view interimAnswer = "HTTP/1.1 100 Continue\r\n\r\n";
        asio::async_write(stream_, asio::buffer(interimAnswer),
                          continuing([](Connection& self) { self.readBody(); }));
    }

    void readBody() {
        lowest().expires_after(bodyTimeout);
        http::async_read(stream_, buffer_, *parser_,
                         [self = this->shared_from_this()](error_code error, std::size_t) {
                             if (error) {
                                 self->readFailed(error);
                             } else {
                                 self->requestComplete();
                             }
                         });
    }

    // A peer that violates HTTP gets an answer; one that has gone away does not.
    void readFailed(error_code error) {
        if (error == http::error::end_of_stream) {
            closeGracefully();
            return;
        }
        if (error.category() != http::make_error_code(http::error::end_of_stream).category() ||
            error == http::error::partial_message) {
            return;
        }
        unsigned status = 400;
        if (error == http::error::body_limit) {
            status = 413;
        } else if (error == http::error::header_limit) {
            status = 431;
        }
        keepAlive_ = false;
        headOnly_ = false;
        outcome_ = Outcome{};
        outcome_.action = errorAnswer(status, error.message());
        host_.statistics.countStatus(status);
        deliver();
    }

    void requestComplete() {
        const auto& message = parser_->get();
        const auto view = [](beast::string_view text) { return std::string_view(text.data(), text.size()); };
        Request request;
        request.method = view(message.method_string());
        request.target = view(message.target());
        request.body = message.body();
        request.range = view(message[http::field::range]);
        request.conditionalRange = message.count(http::field::if_range) > 0;
        if (message.count(http::field::host) == 1) {
            request.host = view(message[http::field::host]);
        }
        if (const auto origin = message.find(http::field::origin); origin != message.end()) {
            request.origin = view(origin->value());
        }
        request.fromLoopback = fromLoopback_;
        keepAlive_ = message.keep_alive();
        headOnly_ = message.method() == http::verb::head;
        version_ = message.version();

        outcome_ = host_.router.handle(request);
        parser_.reset();
        if (outcome_.delay.count() == 0) {
            deliver();
            return;
        }
        timer_.expires_after(outcome_.delay);
        timer_.async_wait(continuing([](Connection& self) { self.deliver(); }));
    }

    void deliver() {
        if (std::holds_alternative<Answer>(outcome_.action)) {
            sendAnswer();
        } else if (std::holds_alternative<HoldConnection>(outcome_.action)) {
            lowest().expires_never();
            discardUntilClosed();
        } else {
            error_code ignored;
            if (std::holds_alternative<ResetConnection>(outcome_.action)) {
                lowest().socket().set_option(asio::socket_base::linger(true, 0), ignored);
            }
            lowest().socket().close(ignored);
        }
    }

    void sendAnswer() {
        auto& answer = std::get<Answer>(outcome_.action);
        const bool hasBody = answer.status != 204 && answer.status != 304;
        const auto* const slice = std::get_if<FileSlice>(&answer.body);
        const std::uint64_t length =
            slice != nullptr ? slice->range.length : std::get<std::string>(answer.body).size();

        http::response<http::empty_body> response;
        response.version(version_);
        response.result(answer.status);
        response.set(http::field::server, "vorna-devserver");
        for (const auto& [name, value] : answer.headers) {
            response.insert(name, value);
        }
        // Half of an empty body would be a complete answer.
        constexpr std::uint64_t announcedForEmptyBody = 16;
        keepAlive_ = keepAlive_ && !outcome_.cutBody;
        response.keep_alive(keepAlive_);
        if (hasBody) {
            response.content_length(outcome_.cutBody && length == 0 ? announcedForEmptyBody : length);
        }
        std::ostringstream text;
        text << response.base();
        head_ = text.str();

        std::uint64_t toSend = hasBody && !headOnly_ ? length : 0;
        if (outcome_.cutBody) {
            toSend /= 2;
        }
        lowest().expires_after(chunkTimeout);
        if (slice != nullptr) {
            unsent_ = {slice->range.offset, toSend};
            asio::async_write(stream_, asio::buffer(head_),
                              continuing([](Connection& self) { self.sendFileChunk(); }));
        } else {
            const auto& body = std::get<std::string>(answer.body);
            const std::array<asio::const_buffer, 2> buffers{
                asio::buffer(head_), asio::buffer(body.data(), static_cast<std::size_t>(toSend))};
            asio::async_write(stream_, buffers, continuing([](Connection& self) { self.answerSent(); }));
        }
    }

    void sendFileChunk() {
        if (unsent_.length == 0) {
            answerSent();
            return;
        }
        const auto& slice = std::get<FileSlice>(std::get<Answer>(outcome_.action).body);
        chunk_.resize(static_cast<std::size_t>(std::min<std::uint64_t>(unsent_.length, chunkBytes)));
        const ssize_t count =
            ::pread(slice.file->number(), chunk_.data(), chunk_.size(), static_cast<off_t>(unsent_.offset));
        if (count <= 0) {
            return;  // the file shrank after its length was announced: ending the connection is the only way
                     // to tell the client
        }
        unsent_.offset += static_cast<std::uint64_t>(count);
        unsent_.length -= static_cast<std::uint64_t>(count);
        lowest().expires_after(chunkTimeout);
        asio::async_write(stream_, asio::buffer(chunk_.data(), static_cast<std::size_t>(count)),
                          continuing([](Connection& self) { self.sendFileChunk(); }));
    }

    void answerSent() {
        if (outcome_.stopServer) {
            host_.stop();
        } else if (keepAlive_) {
            readRequest();
        } else {
            closeGracefully();
        }
    }

    // Ends the connection so that the client receives all that was sent: closing while it still sends would
    // reset it and discard our answer.
    void closeGracefully() {
        lowest().expires_after(closeTimeout);
        if constexpr (std::is_same_v<Stream, TlsStream>) {
            stream_.async_shutdown([self = this->shared_from_this()](error_code) { self->closeSending(); });
        } else {
            closeSending();
        }
    }

    void closeSending() {
        error_code ignored;
        lowest().socket().shutdown(tcp::socket::shutdown_send, ignored);
        lowest().expires_after(closeTimeout);
        discardUntilClosed();
    }

    void discardUntilClosed() {
        chunk_.resize(chunkBytes);
        lowest().async_read_some(asio::buffer(chunk_),
                                 continuing([](Connection& self) { self.discardUntilClosed(); }));
    }

    const Host& host_;
    const bool fromLoopback_;
    Stream stream_;
    asio::steady_timer timer_;
    beast::flat_buffer buffer_;
    std::optional<http::request_parser<http::string_body>> parser_;
    bool keepAlive_ = false;
    bool headOnly_ = false;
    unsigned version_ = 11;
    Outcome outcome_;
    std::string head_;
    ByteRange unsent_;
    std::vector<char> chunk_;
};

bool isLoopback(asio::ip::address address) {
    if (address.is_v6() && address.to_v6().is_v4_mapped()) {
        address = asio::ip::make_address_v4(asio::ip::v4_mapped, address.to_v6());
    }
    return address.is_loopback();
}

// Selects HTTP/1.1 if the client offers it, and otherwise no protocol.
int chooseProtocol(SSL* /*connection*/, const unsigned char** chosen, unsigned char* chosenLength,
                   const unsigned char* offered, unsigned int offeredLength, void* /*argument*/) {
    static constexpr std::array<unsigned char, 9> ours{8, 'h', 't', 't', 'p', '/', '1', '.', '1'};
    unsigned char* selected = nullptr;
    if (SSL_select_next_proto(&selected, chosenLength, ours.data(), ours.size(), offered, offeredLength) !=
        OPENSSL_NPN_NEGOTIATED) {
        return SSL_TLSEXT_ERR_NOACK;
    }
    *chosen = selected;
    return SSL_TLSEXT_ERR_OK;
}

ssl::context tlsContext(const TlsFiles& files) {
    ssl::context context(ssl::context::tls_server);
    SSL_CTX_set_min_proto_version(context.native_handle(), TLS1_2_VERSION);
    SSL_CTX_set_alpn_select_cb(context.native_handle(), chooseProtocol, nullptr);
    // A key with a passphrase is rejected; there is no one to type it.
    context.set_password_callback([](std::size_t, ssl::context::password_purpose) { return std::string(); });
    error_code error;
    context.use_certificate_chain_file(files.certificate.string(), error);
    if (error) {
        throw std::runtime_error("cannot use the certificate " + files.certificate.string() + ": " +
                                 error.message());
    }
    context.use_private_key_file(files.key.string(), ssl::context::pem, error);
    if (error) {
        throw std::runtime_error("cannot use the key " + files.key.string() + ": " + error.message());
    }
    return context;
}

}  // namespace

class Server::Network {
  public:
    Network(const ServerSettings& settings, Router& router, Statistics& statistics, const Console& console)
        : host_{router, statistics, [this] { stop(); }},
          console_(console) {
        if (settings.tls) {
            tls_.emplace(tlsContext(*settings.tls));
        }
        listen(settings);
    }

    [[nodiscard]] std::string url() const {
        const tcp::endpoint endpoint = acceptor_.local_endpoint();
        const std::string address = endpoint.address().to_string();
        return (tls_ ? "https://" : "http://") +
               (endpoint.address().is_v6() ? "[" + address + "]" : address) + ":" +
               std::to_string(endpoint.port());
    }

    void run() {
        signals_.async_wait([this](error_code error, int /*signal*/) {
            if (!error) {
                stop();
            }
        });
        accept();
        while (true) {
            try {
                context_.run();
                return;
            } catch (const std::exception& error) {
                // Only the connection whose handler threw has ended.
                console_.trouble(error.what());
            }
        }
    }

  private:
    void listen(const ServerSettings& settings) {
        error_code error;
        const auto address = asio::ip::make_address(settings.address, error);
        if (error) {
            throw std::runtime_error("not an IP address: " + settings.address);
        }
        if (!settings.tls && !isLoopback(address)) {
            throw std::runtime_error("plain HTTP is served on loopback addresses only, not on " +
                                     settings.address);
        }
        const tcp::endpoint endpoint(address, settings.port);
        const auto require = [&](const error_code& failure) {
            if (failure) {
                throw std::runtime_error("cannot listen on " + settings.address + " port " +
                                         std::to_string(settings.port) + ": " + failure.message());
            }
        };
        acceptor_.open(endpoint.protocol(), error);
        require(error);
        acceptor_.set_option(asio::socket_base::reuse_address(true), error);
        require(error);
        acceptor_.bind(endpoint, error);
        require(error);
        acceptor_.listen(asio::socket_base::max_listen_connections, error);
        require(error);
    }

    void accept() {
        acceptor_.async_accept([this](error_code error, tcp::socket socket) {
            if (error == asio::error::operation_aborted) {
                return;
            }
            if (error) {
                // Out of descriptors, most likely. Retrying immediately would only spin.
                constexpr std::chrono::milliseconds retryDelay{50};
                acceptTimer_.expires_after(retryDelay);
                acceptTimer_.async_wait([this](error_code aborted) {
                    if (!aborted) {
                        accept();
                    }
                });
                return;
            }
            serve(std::move(socket));
            accept();
        });
    }

    void serve(tcp::socket socket) {
        error_code error;
        const tcp::endpoint peer = socket.remote_endpoint(error);
        if (error) {
            return;  // already gone
        }
        socket.set_option(tcp::no_delay(true), error);
        const bool fromLoopback = isLoopback(peer.address());
        if (tls_) {
            std::make_shared<Connection<TlsStream>>(host_, fromLoopback, std::move(socket), *tls_)->start();
        } else {
            std::make_shared<Connection<PlainStream>>(host_, fromLoopback, std::move(socket))->start();
        }
    }

    void stop() { context_.stop(); }

    Host host_;
    const Console& console_;
    std::optional<ssl::context> tls_;
    // Owns the pending operations of connections, which use all of the above.
    asio::io_context context_{1};
    asio::signal_set signals_{context_, SIGINT, SIGTERM};
    tcp::acceptor acceptor_{context_};
    asio::steady_timer acceptTimer_{context_};
};

Server::Server(const ServerSettings& settings, Router& router, Statistics& statistics, const Console& console)
    : network_(std::make_unique<Network>(settings, router, statistics, console)) {}

Server::~Server() = default;

std::string Server::url() const {
    return network_->url();
}

void Server::run() {
    network_->run();
}

}  // namespace vorna::devserver
