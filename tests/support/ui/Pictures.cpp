// SPDX-License-Identifier: Apache-2.0
#include <tests/support/ui/Pictures.h>

#include <QtCore/QDir>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>

namespace vorna::support {

namespace {

// In steps of a channel; antialiasing by other versions of the font library stays below.
constexpr int noticeable = 24;
constexpr double largestMean = 0.75;
constexpr double largestShare = 0.005;

}  // namespace

PictureDifference difference(const QImage& first, const QImage& second) {
    PictureDifference result;
    double sum = 0;
    double pixels = 0;
    double far = 0;
    for (int y = 0; y < first.height(); ++y) {
        for (int x = 0; x < first.width(); ++x) {
            const QRgb one = first.pixel(x, y);
            const QRgb other = second.pixel(x, y);
            const int red = std::abs(qRed(one) - qRed(other));
            const int green = std::abs(qGreen(one) - qGreen(other));
            const int blue = std::abs(qBlue(one) - qBlue(other));
            const int most = std::max({red, green, blue});
            sum += (red + green + blue) / 3.0;
            far += most > noticeable ? 1 : 0;
            ++pixels;
            result.worst = std::max(result.worst, most);
        }
    }
    result.mean = pixels > 0 ? sum / pixels : 0;
    result.share = pixels > 0 ? far / pixels : 0;
    return result;
}

void expectLikePicture(const QImage& actual, const std::string& name) {
    const QString file = QString::fromStdString(name + ".png");
    if (qEnvironmentVariable("VORNA_RECORD_PICTURES") == QStringLiteral("1")) {
        actual.save(QDir(QStringLiteral(VORNA_TEST_PICTURES)).filePath(file));
        ADD_FAILURE() << name << " has been recorded, not compared";
        return;
    }
    const QDir actualFolder(QStringLiteral(VORNA_TEST_PICTURES_ACTUAL));
    const QString kept = actualFolder.filePath(file);
    const auto keep = [&] {
        actualFolder.mkpath(QStringLiteral("."));
        actual.save(kept);
        return kept.toStdString();
    };
    const QImage reference(QDir(QStringLiteral(VORNA_TEST_PICTURES)).filePath(file));
    if (reference.size() != actual.size()) {
        ADD_FAILURE() << name << " is " << actual.width() << "x" << actual.height() << ", the reference "
                      << reference.width() << "x" << reference.height() << "; see " << keep();
        return;
    }
    const PictureDifference found = difference(reference, actual);
    if (found.mean > largestMean || found.share > largestShare) {
        ADD_FAILURE() << name << " differs from its reference by " << found.mean << " in the mean and "
                      << found.worst << " at worst, in " << found.share * 100 << " % of its pixels; see "
                      << keep();
    }
}

}  // namespace vorna::support
