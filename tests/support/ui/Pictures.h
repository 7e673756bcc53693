// SPDX-License-Identifier: Apache-2.0
#pragma once

/// Compares what is drawn with the reference pictures in `tests/ui/pictures`.
///
/// To record them anew, run the tests with VORNA_RECORD_PICTURES=1: every comparison then writes its picture
/// and fails. Look at each picture before it is committed.

#include <QtGui/QImage>

#include <string>

namespace vorna::support {

/// How far apart two pictures of one size are, in steps of a colour channel from 0 to 255.
struct PictureDifference {
    double mean = 0;
    int worst = 0;
    /// The share of pixels that differ by more than a hair, from 0 to 1.
    double share = 0;
};

PictureDifference difference(const QImage& first, const QImage& second);

/// Fails the test unless the picture is like the reference of that name, give or take the edges of letters.
/// When it fails, the picture is in the build folder under pictures-actual.
void expectLikePicture(const QImage& actual, const std::string& name);

}  // namespace vorna::support
