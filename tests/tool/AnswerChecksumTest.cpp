#include "tools/tarvix/AnswerChecksum.h"

#include "tarvix/master/clsLIN.h"

#include <gtest/gtest.h>

#include <array>
#include <vector>

namespace Tarvix::Tool {

namespace {

struct ChecksumCase {
    std::uint8_t ProtectedIdentifier;
    std::vector<std::uint8_t> Data;
    std::uint8_t Checksum;
    ChecksumVerdict Verdict;
};

class AnswerChecksum : public testing::TestWithParam<ChecksumCase> {};
TEST_P(AnswerChecksum, IsToldFromTheAnswer)
{
    const ChecksumCase& Case = GetParam();
    EXPECT_EQ(JudgeChecksum(Case.ProtectedIdentifier, Case.Data, Case.Checksum), Case.Verdict);
}
INSTANTIATE_TEST_SUITE_P(Known, AnswerChecksum,
                         testing::Values(ChecksumCase{0x4A, {0x4A, 0x55, 0x93, 0xE5}, 0xE6, ChecksumVerdict::Classic},
                                         ChecksumCase{0x4A, {0x4A, 0x55, 0x93, 0xE5}, 0x9C, ChecksumVerdict::Enhanced},
                                         ChecksumCase{0x4A, {0x4A, 0x55, 0x93, 0xE5}, 0x9D, ChecksumVerdict::Neither},
                                         ChecksumCase{0x80, {0x00}, 0xFF, ChecksumVerdict::Classic},
                                         ChecksumCase{0x80, {0x00}, 0x7F, ChecksumVerdict::Enhanced},
                                         ChecksumCase{0xBF, {0xFF, 0xFF}, 0x00, ChecksumVerdict::Classic},
                                         ChecksumCase{0xBF, {0xFF, 0xFF}, 0x40, ChecksumVerdict::Enhanced},
                                         ChecksumCase{0x80, {}, 0xFF, ChecksumVerdict::Neither}));

// The verdict has no "both": it would have to be told if the models could ever agree.
TEST(AnswerChecksum, NeverFitsBothModels)
{
    for (std::uint8_t Identifier = 0; Identifier < 0x40; ++Identifier) {
        const std::uint8_t Protected = clsLIN::ComputeIDParity(Identifier);
        for (int Byte = 0; Byte <= 0xFF; ++Byte) {
            const std::array Data = {static_cast<std::uint8_t>(Byte)};
            int Verdicts = 0;
            for (int Checksum = 0; Checksum <= 0xFF; ++Checksum) {
                const auto Verdict = JudgeChecksum(Protected, Data, static_cast<std::uint8_t>(Checksum));
                Verdicts += Verdict == ChecksumVerdict::Neither ? 0 : 1;
            }
            ASSERT_EQ(Verdicts, 2) << int{Identifier} << ", " << Byte;
        }
    }
}

} // namespace

} // namespace Tarvix::Tool
