// SPDX-License-Identifier: Apache-2.0
#pragma once

/// Compares pictures with the references in `tests/ui/pictures`.
///
/// To record new references, run the tests with VORNA_RECORD_PICTURES=1: every comparison then writes its
/// picture and fails. Look at each picture before committing it.

#include <QtGui/QImage>

#include <string>

namespace vorna::support {

/// The difference between two pictures of the same size, in steps of a colour channel from 0 to 255.
struct PictureDifference {
    double mean = 0;
    int worst = 0;
    /// The share of pixels that differ noticeably, from 0 to 1.
    double share = 0;
};

PictureDifference difference(const QImage& first, const QImage& second);

/// Fails the test unless the picture matches the reference of that name, up to the edges of letters. The
/// picture of a failed comparison is stored in the build folder under pictures-actual.
void expectLikePicture(const QImage& actual, const std::string& name);

}  // namespace vorna::support
