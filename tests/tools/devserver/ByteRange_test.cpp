// SPDX-License-Identifier: Apache-2.0
#include <tools/devserver/ByteRange.h>

#include <gmock/gmock.h>

#include <ostream>
#include <string>

namespace vorna::devserver {
namespace {

struct Case {
    std::string name;
    std::string header;
    std::uint64_t size;
    std::string expected;  // "offset+length", "whole" or "unsatisfiable"
};

std::ostream& operator<<(std::ostream& out, const Case& one) {
    return out << one.name;
}

class ByteRangeHeader : public testing::TestWithParam<Case> {};

std::string inWords(const std::variant<WholeFile, ByteRange, UnsatisfiableRange>& range) {
    if (const auto* part = std::get_if<ByteRange>(&range)) {
        return std::to_string(part->offset) + "+" + std::to_string(part->length);
    }
    return std::holds_alternative<WholeFile>(range) ? "whole" : "unsatisfiable";
}

TEST_P(ByteRangeHeader, IsRead) {
    EXPECT_EQ(inWords(readByteRange(GetParam().header, GetParam().size)), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(
    Of, ByteRangeHeader,
    testing::Values(Case{"NoHeader", "", 10, "whole"}, Case{"FirstByte", "bytes=0-0", 10, "0+1"},
                    Case{"Middle", "bytes=3-6", 10, "3+4"}, Case{"OpenEnd", "bytes=3-", 10, "3+7"},
                    Case{"EndBeyondTheFile", "bytes=3-99", 10, "3+7"},
                    Case{"LastBytes", "bytes=-4", 10, "6+4"},
                    Case{"MoreLastBytesThanThereAre", "bytes=-40", 10, "0+10"},
                    Case{"NoLastBytes", "bytes=-0", 10, "unsatisfiable"},
                    Case{"StartAtTheEnd", "bytes=10-", 10, "unsatisfiable"},
                    Case{"StartBeyondTheEnd", "bytes=11-12", 10, "unsatisfiable"},
                    Case{"EmptyFile", "bytes=0-", 0, "unsatisfiable"},
                    Case{"LastBytesOfAnEmptyFile", "bytes=-1", 0, "unsatisfiable"},
                    Case{"BackToFront", "bytes=6-3", 10, "whole"},
                    Case{"SeveralRanges", "bytes=0-1,4-5", 10, "whole"},
                    Case{"OtherUnit", "lines=0-1", 10, "whole"}, Case{"NoNumbers", "bytes=-", 10, "whole"},
                    Case{"NoDash", "bytes=4", 10, "whole"}, Case{"Letters", "bytes=a-b", 10, "whole"},
                    Case{"Sign", "bytes=+1-2", 10, "whole"},
                    Case{"NumberTooLarge", "bytes=99999999999999999999-", 10, "whole"},
                    Case{"LargestNumber", "bytes=0-18446744073709551615", 10, "0+10"}),
    [](const auto& parameter) { return parameter.param.name; });

}  // namespace
}  // namespace vorna::devserver
