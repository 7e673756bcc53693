// SPDX-License-Identifier: Apache-2.0
#include <vorna/ui/common/MediaLoader.h>

#include <tests/support/RawServer.h>
#include <tests/support/RecordedEvents.h>
#include <tests/support/TemporaryFolder.h>
#include <tests/support/ui/MediaSamples.h>
#include <tests/support/ui/OnboardingDocument.h>
#include <tests/support/ui/ScreenHost.h>

#include <vorna/platform/HttpClient.h>
#include <vorna/platform/curl/CurlHttpClient.h>
#include <vorna/ui/common/MediaScreenViewController.h>

#include <QtCore/QDir>
#include <QtCore/QFile>

#include <gmock/gmock.h>

#include <algorithm>
#include <atomic>
#include <memory>
#include <ostream>
#include <string>
#include <vector>

namespace vorna {
namespace {

using namespace std::string_literals;
using std::chrono::milliseconds;
using support::basicStep;
using support::documentOf;
using support::eventually;
using support::letTimePass;
using support::RawServer;
using support::ScreenHost;
using testing::IsEmpty;

struct ContentType {
    const char* name;
    std::optional<HttpResponse> response;
    bool isVideo;
};

void PrintTo(const ContentType& type, std::ostream* stream) {
    *stream << type.name;
}

HttpResponse with(std::vector<HttpHeader> headers, int status = 200) {
    return {"https://media.test/a", status, std::move(headers)};
}

class KindOfMedia : public testing::TestWithParam<ContentType> {};

TEST_P(KindOfMedia, IsDeterminedByTheContentType) {
    EXPECT_EQ(ui::MediaLoader::isVideo(GetParam().response), GetParam().isVideo);
}

INSTANTIATE_TEST_SUITE_P(
    Answers, KindOfMedia,
    testing::Values(ContentType{"None", std::nullopt, false}, ContentType{"WithoutAType", with({}), false},
                    ContentType{"Mp4", with({{"Content-Type", "video/mp4"}}), true},
                    ContentType{"LowerCaseName", with({{"content-type", "video/webm"}}), true},
                    ContentType{"WithParameters", with({{"Content-Type", "video/mp4; codecs=avc1"}}), true},
                    ContentType{"VideoInAParameter", with({{"Content-Type", "image/png; name=video"}}),
                                false},
                    ContentType{"VideoInTheMiddle", with({{"Content-Type", "application/x-video"}}), true},
                    ContentType{"Capitals", with({{"Content-Type", "Video/MP4"}}), false},
                    ContentType{"Png", with({{"Content-Type", "image/png"}}), false},
                    ContentType{"Empty", with({{"Content-Type", ""}}), false},
                    ContentType{"AnotherHeader", with({{"X-Content-Type", "video/mp4"}}), false},
                    ContentType{"OfAnErrorPage", with({{"Content-Type", "video/mp4"}}, 404), true}),
    [](const auto& testCase) { return testCase.param.name; });

/// A host's window, with media from the network through the real client.
class Media : public testing::Test {
  protected:
    Media() {
        // Other tests write temporary files at the same time.
        qputenv("TMPDIR", folder.path().c_str());
        Platform fakes;
        fakes.httpClient = std::make_shared<CurlHttpClient>("");
        fakes.eventURL = "https://service.test/v1/event";
        fakes.configURL = "https://service.test/v1/config";
        fakes.credentialStore = std::make_shared<support::InMemoryCredentialStore>();
        fakes.preferences = std::make_shared<support::InMemoryPreferences>();
        fakes.system = std::make_shared<support::FixedSystem>();
        fakes.clock = std::make_shared<support::SettableClock>();
        fakes.randomSource = std::make_shared<support::CountingRandomSource>();
        VornaCoreSDK::UsePlatform(std::move(fakes));
    }

    void show(const std::string& url) {
        VornaCoreSDK::ShowOnboarding(documentOf({basicStep("Media", {{"media", url.c_str()}})}));
        host.settle();
    }

    ui::MediaLoader* loader() {
        return static_cast<ui::MediaScreenViewController*>(host.screens().back().get())->media();
    }

    bool pictureComes(milliseconds longest = std::chrono::seconds(20)) {
        return eventually([&] { return !loader()->image().isNull(); }, longest);
    }

    QObject* player() {
        QQuickItem* const video = host.find("mediaVideo");
        const QObject* const item = video == nullptr ? nullptr : video->property("item").value<QObject*>();
        return item == nullptr ? nullptr : item->property("player").value<QObject*>();
    }

    static QStringList temporaryFiles() {
        return QDir::temp().entryList({QStringLiteral("vorna-media-*")}, QDir::Files);
    }

    const support::TemporaryFolder folder;
    ScreenHost host{{375, 667}};
};

/// Answers HEAD with one type and GET with that body.
RawServer::Script answering(const std::string& type, const std::string& body) {
    return [type, body](RawServer::Connection& connection) {
        for (;;) {
            const std::string request = connection.readRequest();
            if (request.empty()) {
                return;
            }
            const bool isHead = request.starts_with("HEAD ");
            const std::string head = "HTTP/1.1 200 OK\r\n" +
                                     (type.empty() ? "" : "Content-Type: " + type + "\r\n") +
                                     "Content-Length: " + std::to_string(body.size()) + "\r\n\r\n";
            if (!connection.send(isHead ? head : head + body)) {
                return;
            }
        }
    };
}

TEST_F(Media, ThatIsAPictureKeepsItsProportions) {
    RawServer server(answering("image/png", support::encodedPicture({300, 150}, "png")));
    show(server.url("/a.png"));
    ASSERT_TRUE(pictureComes());
    host.settle();
    EXPECT_EQ(ScreenHost::geometry(host.find("mediaView")), QRectF(0, 40, 375, 187.5));
    EXPECT_EQ(ScreenHost::geometry(host.find("mediaImage")), QRectF(0, 40, 375, 187.5));
    const QImage picture = host.picture();
    EXPECT_EQ(picture.pixelColor(60, 50), QColor(Qt::red));
    EXPECT_EQ(picture.pixelColor(320, 220), QColor(Qt::blue));
    EXPECT_EQ(picture.pixelColor(60, 36), QColor(0x1b, 0x1b, 0x3a));
    EXPECT_EQ(player(), nullptr);
}

TEST_F(Media, LargerThanTheScreenIsScaledDown) {
    RawServer server(answering("image/jpeg", support::encodedPicture({3000, 1000}, "jpeg")));
    show(server.url("/a.jpg"));
    ASSERT_TRUE(pictureComes());
    EXPECT_EQ(loader()->image().size(), QSize(375, 125));
    EXPECT_EQ(loader()->imageSize(), QSizeF(3000, 1000));
    EXPECT_EQ(host.find("mediaView")->height(), 125);
}

TEST_F(Media, RotatedByItsMetadataIsUpright) {
    RawServer server(answering("image/jpeg", support::turnedJpeg({800, 400}, 6)));
    show(server.url("/a.jpg"));
    ASSERT_TRUE(pictureComes());
    EXPECT_EQ(loader()->imageSize(), QSizeF(400, 800));
    EXPECT_EQ(host.find("mediaView")->height(), 750);
    EXPECT_EQ(loader()->image().size(), QSize(375, 750));
    EXPECT_GT(loader()->image().pixelColor(180, 20).red(), 200) << "the left side is now at the top";
    EXPECT_GT(loader()->image().pixelColor(180, 700).blue(), 200);
}

TEST_F(Media, ThatCannotBeDecodedLeavesTheAreaEmpty) {
    for (const std::string& body :
         {"no picture at all"s, ""s, support::encodedPicture({300, 150}, "png").substr(0, 40),
          "<svg xmlns='http://www.w3.org/2000/svg' width='0' height='0'/>"s}) {
        RawServer server(answering("image/png", body));
        show(server.url("/a.png"));
        EXPECT_TRUE(server.waitForConnections(1));
        EXPECT_FALSE(pictureComes(milliseconds(400)));
        EXPECT_FALSE(host.find("mediaImage")->isVisible());
        EXPECT_NE(host.find("actionButton"), nullptr);
        VornaCoreSDK::CloseOnboarding();
    }
}

TEST_F(Media, WithoutATypeIsTreatedAsAPicture) {
    RawServer server(answering("", support::encodedPicture({300, 150}, "png")));
    show(server.url("/a"));
    EXPECT_TRUE(pictureComes());
}

TEST_F(Media, WhoseProbeFailsIsTreatedAsAPicture) {
    const std::string picture = support::encodedPicture({300, 150}, "png");
    RawServer server([&](RawServer::Connection& connection) {
        if (connection.readRequest().starts_with("HEAD ")) {
            return connection.reset();
        }
        connection.send(RawServer::httpAnswer(200, picture));
    });
    show(server.url("/a.mp4"));
    EXPECT_TRUE(pictureComes());
}

TEST_F(Media, WhoseServerRefusesProbesIsTreatedAsAPicture) {
    const std::string picture = support::encodedPicture({300, 150}, "png");
    RawServer server([&](RawServer::Connection& connection) {
        const bool isHead = connection.readRequest().starts_with("HEAD ");
        connection.send(isHead ? "HTTP/1.1 405 No\r\nContent-Length: 0\r\nConnection: close\r\n\r\n"
                               : RawServer::httpAnswer(200, picture));
    });
    show(server.url("/a.png"));
    EXPECT_TRUE(pictureComes());
}

TEST_F(Media, WhoseProbeHangsBlocksNothing) {
    RawServer server([](RawServer::Connection& connection) {
        connection.readRequest();
        connection.hang();
    });
    show(server.url("/a.png"));
    EXPECT_TRUE(server.waitForConnections(1));
    host.click(host.find("actionButton"));
    EXPECT_EQ(host.notifications().size(), 1U);
    VornaCoreSDK::CloseOnboarding();
}

TEST_F(Media, ThatIsAPictureDeclaredAsVideoShowsNothing) {
    RawServer server(answering("video/mp4", support::encodedPicture({300, 150}, "png")));
    show(server.url("/a.png"));
    EXPECT_TRUE(eventually([&] { return !loader()->video().isEmpty(); }));
    letTimePass(milliseconds(300));
    EXPECT_TRUE(loader()->image().isNull());
    VornaCoreSDK::CloseOnboarding();
    EXPECT_TRUE(eventually([&] { return temporaryFiles().isEmpty(); }));
}

TEST_F(Media, WithoutAValidURLIsNotRequested) {
    for (const char* const address : {"no address", "/a.png", "http://", "file:///etc/hostname", "😀"}) {
        show(address);
        EXPECT_FALSE(pictureComes(milliseconds(50)));
        EXPECT_NE(host.find("actionButton"), nullptr);
        VornaCoreSDK::CloseOnboarding();
    }
}

TEST_F(Media, IsCancelledWhenTheScreenIsClosed) {
    std::atomic<int> ended = 0;
    RawServer server([&](RawServer::Connection& connection) {
        if (connection.readRequest().starts_with("HEAD ")) {
            connection.send("HTTP/1.1 200 OK\r\nContent-Type: image/png\r\nContent-Length: 9\r\n"
                            "Connection: close\r\n\r\n");
            return;
        }
        connection.send("HTTP/1.1 200 OK\r\nContent-Length: 1000000\r\n\r\nbeginning");
        connection.hang();
        ++ended;
    });
    show(server.url("/a.png"));
    EXPECT_TRUE(server.waitForConnections(2));
    letTimePass(milliseconds(100));
    EXPECT_EQ(ended, 0);
    VornaCoreSDK::CloseOnboarding();
    EXPECT_TRUE(eventually([&] { return ended == 1; })) << "the server sees the connection end";
}

TEST_F(Media, IsCancelledWhenTheWindowIsDestroyed) {
    std::atomic<int> ended = 0;
    RawServer server([&](RawServer::Connection& connection) {
        connection.readRequest();
        connection.hang();
        ++ended;
    });
    show(server.url("/a.png"));
    EXPECT_TRUE(server.waitForConnections(1));
    host.close();
    EXPECT_TRUE(eventually([&] { return ended == 1; }));
}

TEST_F(Media, IsNotDecodedForAClosedScreen) {
    RawServer server(answering("image/png", support::encodedPicture({3000, 3000}, "png")));
    for (int i = 0; i < 10; ++i) {
        show(server.url("/a.png"));
        letTimePass(milliseconds(7 * i));
        VornaCoreSDK::CloseOnboarding();
    }
    show(server.url("/a.png"));
    letTimePass(milliseconds(20));
    host.close();
    letTimePass(milliseconds(300));
}

TEST_F(Media, OfMoreThanSixtyFourMegabytesIsRejected) {
    std::atomic<bool> refused = false;
    RawServer server([&](RawServer::Connection& connection) {
        for (std::string request = connection.readRequest(); !request.empty();
             request = connection.readRequest()) {
            const std::string head = "HTTP/1.1 200 OK\r\nContent-Type: video/mp4\r\nContent-Length: " +
                                     std::to_string(65 * 1024 * 1024) + "\r\n\r\n";
            if (!connection.send(head)) {
                return;
            }
            if (request.starts_with("GET ")) {
                const std::string piece(1024 * 1024, 'x');
                for (int i = 0; i < 65; ++i) {
                    if (!connection.send(piece)) {
                        refused = true;
                        return;
                    }
                }
                refused = connection.readRequest().empty();
                return;
            }
        }
    });
    show(server.url("/a.mp4"));
    EXPECT_TRUE(eventually([&] { return refused.load(); }));
    letTimePass(milliseconds(200));
    EXPECT_TRUE(loader()->video().isEmpty());
    EXPECT_THAT(temporaryFiles(), IsEmpty());
}

TEST_F(Media, OfTwentyMegabytesIsAccepted) {
    // More than the client's default limit, which must not apply to the probe either.
    RawServer server(answering("video/mp4", std::string(20 * 1024 * 1024, 'x')));
    show(server.url("/a.mp4"));
    EXPECT_TRUE(eventually([&] { return !loader()->video().isEmpty(); }));
    EXPECT_EQ(QFile(loader()->video().toLocalFile()).size(), 20 * 1024 * 1024);
    // A program may exit while its window is open, and must not leave the video behind.
    EXPECT_TRUE(eventually([&] { return temporaryFiles().isEmpty(); }));
    VornaCoreSDK::CloseOnboarding();
}

}  // namespace
}  // namespace vorna
