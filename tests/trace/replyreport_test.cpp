#include "trace/replyreport.h"

#include <gtest/gtest.h>

namespace {

IcmpEcho::Reply replyFrom(uint32_t address, uint32_t status, uint32_t ms = 14, uint16_t size = 32, uint8_t ttl = 252)
{
    IcmpEcho::Reply reply;
    reply.address = address;
    reply.status = status;
    reply.roundTripMs = ms;
    reply.dataSize = size;
    reply.ttl = ttl;
    return reply;
}

struct StatusCase {
    uint32_t code;
    const char *text; // nullptr: the table has no text for it
};

// Readable test names: the case, not its bytes.
void PrintTo(const StatusCase &c, std::ostream *out)
{
    *out << c.code;
}

class StatusTable : public ::testing::TestWithParam<StatusCase>
{
};

TEST_P(StatusTable, GivesEachCodeItsTextByteForByte)
{
    const StatusCase c = GetParam();
    const std::optional<QString> text = ReplyReport::statusText(c.code);
    if (c.text) {
        ASSERT_TRUE(text.has_value()) << c.code;
        EXPECT_EQ(*text, QString::fromLatin1(c.text)) << c.code;
    } else {
        EXPECT_FALSE(text.has_value()) << c.code;
    }
}

INSTANTIATE_TEST_SUITE_P(
    Codes, StatusTable,
    ::testing::Values(StatusCase{0, "Success"}, StatusCase{11001, "Buffer too Small"},
                      StatusCase{11002, nullptr}, // destination network unreachable has no text
                      StatusCase{11003, "Dest Host Not Reachable"}, StatusCase{11004, "Dest Protocol Not Reachable"},
                      StatusCase{11005, "Dest Port Not Reachable"}, StatusCase{11006, "No Resources Available"},
                      StatusCase{11007, "Bad Option"}, StatusCase{11008, "Hardware Error"},
                      StatusCase{11009, "Packet too Big"}, StatusCase{11010, "Rqst Timed Out"},
                      StatusCase{11011, "Bad Request"}, StatusCase{11012, "Bad Route"},
                      StatusCase{11013, "TTL Exprd In Transit"}, StatusCase{11014, "TTL Exprd Reassemb"},
                      StatusCase{11015, "Parameter Problem"}, StatusCase{11016, "Source Quench"},
                      StatusCase{11017, "Option too Big"}, StatusCase{11018, " Bad Destination"},
                      StatusCase{11019, "Address Deleted"}, StatusCase{11020, "Spec MTU Change"},
                      StatusCase{11021, "MTU Change"}, StatusCase{11022, "Unload"},
                      StatusCase{11023, nullptr}, StatusCase{11040, nullptr}, StatusCase{11050, "General Failure"},
                      StatusCase{1, nullptr}, StatusCase{0xffffffff, nullptr}));

TEST(ReplyReportInTrace, RouterReplyRaisesBothStatusTextsTheCodeErrorAndTheHopLine)
{
    const ReplyReport report = ReplyReport::of(replyFrom(0x0a010203, 11013, 14, 0, 253), 3, QString());
    EXPECT_EQ(report.statusTexts, QStringList({QStringLiteral("TTL Exprd In Transit"), QStringLiteral(" (11013)")}));
    EXPECT_EQ(report.errorText, QStringLiteral("11013:"));
    EXPECT_EQ(report.logLine, QStringLiteral(" # 03 Reply from 10.1.2.3: Bytes = 0 Time = 14ms TTL = 253"));
}

TEST(ReplyReportInTrace, DestinationReplyRaisesNoError)
{
    const ReplyReport report = ReplyReport::of(replyFrom(0x0a010203, 0), 3, QString());
    EXPECT_EQ(report.statusTexts, QStringList({QStringLiteral("Success"), QStringLiteral(" (0)")}));
    EXPECT_FALSE(report.errorText.has_value());
    EXPECT_EQ(report.logLine, QStringLiteral(" # 03 Reply from 10.1.2.3: Bytes = 32 Time = 14ms TTL = 252"));
}

TEST(ReplyReportInTrace, HopNumbersFromTenOnAreNotPadded)
{
    EXPECT_EQ(ReplyReport::of(replyFrom(0x7f000001, 0, 0, 32, 64), 9, QString()).logLine,
              QStringLiteral(" # 09 Reply from 127.0.0.1: Bytes = 32 Time = 0ms TTL = 64"));
    EXPECT_EQ(ReplyReport::of(replyFrom(0x7f000001, 0, 0, 32, 64), 10, QString()).logLine,
              QStringLiteral(" # 10 Reply from 127.0.0.1: Bytes = 32 Time = 0ms TTL = 64"));
    EXPECT_EQ(ReplyReport::of(replyFrom(0x7f000001, 0, 1234, 32, 1), 254, QString()).logLine,
              QStringLiteral(" # 254 Reply from 127.0.0.1: Bytes = 32 Time = 1234ms TTL = 1"));
}

TEST(ReplyReportInTrace, CodeWithoutTableTextRaisesOnlyTheCodeStatus)
{
    const ReplyReport report = ReplyReport::of(replyFrom(0x0a000001, 11002), 2, QString());
    EXPECT_EQ(report.statusTexts, QStringList({QStringLiteral(" (11002)")}));
    EXPECT_EQ(report.errorText, QStringLiteral("11002:"));
}

TEST(ReplyReportSingleEcho, SuccessLogsTheRoundTripLine)
{
    const ReplyReport report = ReplyReport::of(replyFrom(0xc0a80001, 0, 7, 32, 64), std::nullopt, QString());
    EXPECT_EQ(report.statusTexts, QStringList({QStringLiteral("Success"), QStringLiteral(" (0)")}));
    EXPECT_EQ(report.logLine, QStringLiteral(" Reply from 192.168.0.1: Bytes = 32 RTT = 7ms TTL = 64"));
}

TEST(ReplyReportSingleEcho, FailureLogsTheAddressAndTheDetailText)
{
    const ReplyReport report = ReplyReport::of(replyFrom(0xc0a80001, 11003), std::nullopt, QString());
    EXPECT_EQ(report.logLine, QStringLiteral(" Reply from 192.168.0.1: "));
    EXPECT_EQ(report.errorText, QStringLiteral("11003:"));
}

TEST(ReplyReportDetail, FollowsTheCodeInStatusErrorAndFailedSingleEcho)
{
    const ReplyReport report = ReplyReport::of(replyFrom(0xc0a80001, 11003), std::nullopt, QStringLiteral("why"));
    EXPECT_EQ(report.statusTexts.last(), QStringLiteral("why (11003)"));
    EXPECT_EQ(report.errorText, QStringLiteral("11003:why"));
    EXPECT_EQ(report.logLine, QStringLiteral(" Reply from 192.168.0.1: why"));
}

} // namespace
