// SPDX-License-Identifier: Apache-2.0
#include <vorna/core/VornaCoreSDK.h>

#include <tests/support/LocalService.h>
#include <tests/support/TemporaryFolder.h>
#include <tests/support/ui/MediaSamples.h>
#include <tests/support/ui/OnboardingDocument.h>
#include <tests/support/ui/PrintedLines.h>
#include <tests/support/ui/ScreenHost.h>

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtCore/QPointer>
#include <QtCore/QUrl>

#include <gmock/gmock.h>

#include <algorithm>
#include <cstddef>
#include <ostream>
#include <string>
#include <vector>

namespace vorna {
namespace {

using support::basicStep;
using support::documentOf;
using support::eventually;
using support::PrintedLines;
using support::ScreenHost;

struct Codec {
    const char* name;
    const char* file;
    const char* video;
    const char* audio;
};

void PrintTo(const Codec& codec, std::ostream* stream) {
    *stream << codec.name;
}

/// Whether this process has a descriptor of the file.
bool isOpen(const QString& file) {
    const QFileInfoList descriptors =
        QDir(QStringLiteral("/proc/self/fd")).entryInfoList(QDir::AllEntries | QDir::System);
    return std::any_of(descriptors.begin(), descriptors.end(),
                       [&](const QFileInfo& info) { return info.symLinkTarget() == file; });
}

/// From the local service, over TLS.
class Video : public testing::TestWithParam<Codec> {
  protected:
    Video() {
        support::makeVideo(folder.path() / GetParam().file, GetParam().video, GetParam().audio);
        VornaCoreSDK::UsePlatform(makePlatform(service.options()));
    }

    const support::TemporaryFolder folder;
    const support::LocalService service{{"--media", folder.path().string()}};
    PrintedLines printed;
    ScreenHost host;
};

TEST_P(Video, LoopsWithSoundUntilItsScreenIsClosed) {
    const std::string url = service.url() + "/media/" + GetParam().file;
    VornaCoreSDK::ShowOnboarding(documentOf({basicStep("Video", {{"media", url.c_str()}})}));
    host.settle();
    QPointer<QObject> player;
    ASSERT_TRUE(eventually([&] {
        const QQuickItem* const loader = host.find("mediaVideo");
        const auto* const item = loader == nullptr ? nullptr : loader->property("item").value<QObject*>();
        player = item == nullptr ? nullptr : item->property("player").value<QObject*>();
        return player != nullptr;
    }));
    std::vector<int> positions;
    ASSERT_TRUE(eventually([&] {
        positions.push_back(player->property("position").toInt());
        int rounds = 0;
        for (std::size_t i = 1; i < positions.size(); ++i) {
            rounds += positions[i] < positions[i - 1] - 300 ? 1 : 0;
        }
        return rounds >= 3;
    })) << "it starts again and again";
    EXPECT_GE(std::count_if(positions.begin(), positions.end(), [](int at) { return at > 700; }), 1);
    EXPECT_TRUE(player->property("hasVideo").toBool());
    EXPECT_TRUE(player->property("hasAudio").toBool());
    EXPECT_EQ(player->property("playbackState").toInt(), 1);

    // The picture changes.
    const QRectF area = ScreenHost::geometry(host.find("mediaView"));
    EXPECT_EQ(area.top(), 40);
    const auto* const item = host.find("mediaVideo")->property("item").value<QQuickItem*>();
    EXPECT_EQ(item->size(), area.size());
    const QImage first = host.picture().copy(area.toRect());
    EXPECT_TRUE(eventually([&] { return host.picture().copy(area.toRect()) != first; }));

    const auto* const output = player->property("audioOutput").value<QObject*>();
    const std::vector<std::string> lines = printed.take();
    const std::string silence = "[VornaSDK] Failed to set up AVAudioSession: there is no audio output";
    EXPECT_EQ(std::count(lines.begin(), lines.end(), silence), output == nullptr ? 1 : 0);
    if (output != nullptr) {
        EXPECT_FALSE(output->property("muted").toBool());
    }

    const QString file = QFile::symLinkTarget(player->property("source").toUrl().toLocalFile());
    EXPECT_TRUE(file.contains(QStringLiteral("(deleted)")));
    EXPECT_TRUE(isOpen(file));
    VornaCoreSDK::CloseOnboarding();
    EXPECT_TRUE(eventually([&] { return player.isNull() && !isOpen(file); }));
}

TEST_P(Video, EndsWithItsWindow) {
    const std::string url = service.url() + "/media/" + GetParam().file;
    VornaCoreSDK::ShowOnboarding(documentOf({basicStep("Video", {{"media", url.c_str()}})}));
    host.settle();
    QPointer<QObject> player;
    ASSERT_TRUE(eventually([&] {
        const QQuickItem* const loader = host.find("mediaVideo");
        const auto* const item = loader == nullptr ? nullptr : loader->property("item").value<QObject*>();
        player = item == nullptr ? nullptr : item->property("player").value<QObject*>();
        return player != nullptr && player->property("position").toInt() > 0;
    }));
    const QString file = QFile::symLinkTarget(player->property("source").toUrl().toLocalFile());
    EXPECT_TRUE(isOpen(file));
    host.close();
    EXPECT_TRUE(eventually([&] { return player.isNull() && !isOpen(file); }));
}

INSTANTIATE_TEST_SUITE_P(Formats, Video,
                         testing::Values(Codec{"Mp4WithH264AndAac", "a.mp4", "libx264", "aac"},
                                         Codec{"WebmWithVp8AndVorbis", "a.webm", "libvpx", "libvorbis"},
                                         Codec{"WebmWithVp9AndOpus", "b.webm", "libvpx-vp9", "libopus"}),
                         [](const auto& testCase) { return testCase.param.name; });

}  // namespace
}  // namespace vorna
