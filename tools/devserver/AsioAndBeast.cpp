// SPDX-License-Identifier: Apache-2.0
// The compiled halves of Boost.Asio and Boost.Beast, built once here so that the other sources see
// declarations only.

#include <boost/asio/impl/src.hpp>
#include <boost/asio/ssl/impl/src.hpp>
#include <boost/beast/src.hpp>
