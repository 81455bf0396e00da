#include "trace/replyreport.h"

#include "platform/resolver.h"

#include <QHash>

std::optional<QString> ReplyReport::statusText(uint32_t code)
{
    static const QHash<uint32_t, QString> texts{
        {0, QStringLiteral("Success")},
        {11001, QStringLiteral("Buffer too Small")},
        {11003, QStringLiteral("Dest Host Not Reachable")},
        {11004, QStringLiteral("Dest Protocol Not Reachable")},
        {11005, QStringLiteral("Dest Port Not Reachable")},
        {11006, QStringLiteral("No Resources Available")},
        {11007, QStringLiteral("Bad Option")},
        {11008, QStringLiteral("Hardware Error")},
        {11009, QStringLiteral("Packet too Big")},
        {11010, QStringLiteral("Rqst Timed Out")},
        {11011, QStringLiteral("Bad Request")},
        {11012, QStringLiteral("Bad Route")},
        {11013, QStringLiteral("TTL Exprd In Transit")},
        {11014, QStringLiteral("TTL Exprd Reassemb")},
        {11015, QStringLiteral("Parameter Problem")},
        {11016, QStringLiteral("Source Quench")},
        {11017, QStringLiteral("Option too Big")},
        {11018, QStringLiteral(" Bad Destination")},
        {11019, QStringLiteral("Address Deleted")},
        {11020, QStringLiteral("Spec MTU Change")},
        {11021, QStringLiteral("MTU Change")},
        {11022, QStringLiteral("Unload")},
        {11050, QStringLiteral("General Failure")},
    };
    const auto found = texts.constFind(code);
    if (found == texts.constEnd())
        return std::nullopt;
    return *found;
}

ReplyReport ReplyReport::of(const IcmpEcho::Reply &reply, std::optional<int> hop, const QString &detail)
{
    ReplyReport report;
    const QString code = QString::number(reply.status);
    if (const std::optional<QString> text = statusText(reply.status))
        report.statusTexts << *text;
    report.statusTexts << detail + QStringLiteral(" (") + code + QStringLiteral(")");
    if (reply.status != IcmpEcho::Success)
        report.errorText = code + QStringLiteral(":") + detail;

    const QString from = QStringLiteral(" Reply from ") + resolver::formatAddress(reply.address) + QStringLiteral(": ");
    if (hop) {
        report.logLine = (*hop < 10 ? QStringLiteral(" # 0") : QStringLiteral(" # ")) + QString::number(*hop) + from
                       + QStringLiteral("Bytes = %1 Time = %2ms TTL = %3").arg(reply.dataSize).arg(reply.roundTripMs).arg(reply.ttl);
    } else if (reply.status == IcmpEcho::Success) {
        report.logLine = from + QStringLiteral("Bytes = %1 RTT = %2ms TTL = %3").arg(reply.dataSize).arg(reply.roundTripMs).arg(reply.ttl);
    } else {
        report.logLine = from + detail;
    }
    return report;
}
