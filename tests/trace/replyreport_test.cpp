#include "trace/replyreport.h"

#include <gtest/gtest.h>

namespace {

TEST(ReplyReport, StatusTableGivesEachCodeItsTextByteForByte)
{
    const std::pair<uint32_t, const char *> codes[] = { // nullptr: the table has no text for it (11002 among them)
        {0, "Success"},                         {11001, "Buffer too Small"},       {11002, nullptr},
        {11003, "Dest Host Not Reachable"},     {11004, "Dest Protocol Not Reachable"}, {11005, "Dest Port Not Reachable"},
        {11006, "No Resources Available"},      {11007, "Bad Option"},             {11008, "Hardware Error"},
        {11009, "Packet too Big"},              {11010, "Rqst Timed Out"},         {11011, "Bad Request"},
        {11012, "Bad Route"},                   {11013, "TTL Exprd In Transit"},   {11014, "TTL Exprd Reassemb"},
        {11015, "Parameter Problem"},           {11016, "Source Quench"},          {11017, "Option too Big"},
        {11018, " Bad Destination"},            {11019, "Address Deleted"},        {11020, "Spec MTU Change"},
        {11021, "MTU Change"},                  {11022, "Unload"},                 {11023, nullptr},
        {11040, nullptr},                       {11050, "General Failure"},        {1, nullptr},
        {0xffffffff, nullptr},
    };
    for (const auto &[code, text] : codes)
        EXPECT_EQ(ReplyReport::statusText(code), text ? std::optional(QString::fromLatin1(text)) : std::nullopt) << code;
}

TEST(ReplyReport, RaisesTheStatusTextsTheErrorOfAFailureAndTheLogLineOfAHopOrASingleEcho)
{
    const struct {
        uint32_t address, status, ms;
        uint16_t size;
        uint8_t ttl;
        std::optional<int> hop;
        const char *detail;
        const char *statusTexts; // joined by "|"
        const char *errorText;   // nullptr: none
        const char *logLine;
    } cases[] = {
        {0x0a010203, 11013, 14, 0, 253, 3, "", "TTL Exprd In Transit| (11013)", "11013:",
         " # 03 Reply from 10.1.2.3: Bytes = 0 Time = 14ms TTL = 253"},
        // Hop numbers from ten on are not padded.
        {0x0a010203, 0, 14, 32, 252, 9, "", "Success| (0)", nullptr, " # 09 Reply from 10.1.2.3: Bytes = 32 Time = 14ms TTL = 252"},
        {0x7f000001, 0, 0, 32, 64, 10, "", "Success| (0)", nullptr, " # 10 Reply from 127.0.0.1: Bytes = 32 Time = 0ms TTL = 64"},
        {0x7f000001, 0, 1234, 32, 1, 254, "", "Success| (0)", nullptr, " # 254 Reply from 127.0.0.1: Bytes = 32 Time = 1234ms TTL = 1"},
        {0x0a000001, 11002, 14, 32, 252, 2, "", " (11002)", "11002:", " # 02 Reply from 10.0.0.1: Bytes = 32 Time = 14ms TTL = 252"},
        {0xc0a80001, 0, 7, 32, 64, std::nullopt, "", "Success| (0)", nullptr, " Reply from 192.168.0.1: Bytes = 32 RTT = 7ms TTL = 64"},
        {0xc0a80001, 11003, 14, 32, 252, std::nullopt, "", "Dest Host Not Reachable| (11003)", "11003:", " Reply from 192.168.0.1: "},
        // The detail follows the code in the status and the error, and ends a failed single echo's line.
        {0xc0a80001, 11003, 14, 32, 252, std::nullopt, "why", "Dest Host Not Reachable|why (11003)", "11003:why",
         " Reply from 192.168.0.1: why"},
    };
    for (const auto &c : cases) {
        IcmpEcho::Reply reply;
        reply.address = c.address;
        reply.status = c.status;
        reply.roundTripMs = c.ms;
        reply.dataSize = c.size;
        reply.ttl = c.ttl;
        const ReplyReport report = ReplyReport::of(reply, c.hop, QString::fromLatin1(c.detail));
        EXPECT_EQ(report.statusTexts.join(QLatin1Char('|')), QString::fromLatin1(c.statusTexts)) << c.logLine;
        EXPECT_EQ(report.errorText, c.errorText ? std::optional(QString::fromLatin1(c.errorText)) : std::nullopt) << c.logLine;
        EXPECT_EQ(report.logLine, QString::fromLatin1(c.logLine));
    }
}

} // namespace
