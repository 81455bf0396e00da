#include "tests/netlab/responder/replyqueue.h"

#include <tuple>

namespace {

// Enough for every test's probes at once, few enough that a flood cannot eat the memory.
constexpr size_t kMaxWaiting = 4096;

} // namespace

bool ReplyQueue::Later::operator()(const Reply &a, const Reply &b) const
{
    return std::tie(a.dueNs, a.order) > std::tie(b.dueNs, b.order);
}

bool ReplyQueue::push(int64_t dueNs, uint32_t destination, std::vector<uint8_t> packet)
{
    if (m_replies.size() >= kMaxWaiting)
        return false;
    m_replies.push({dueNs, m_nextOrder++, destination, std::move(packet)});
    return true;
}

std::optional<int64_t> ReplyQueue::nextDueNs() const
{
    if (m_replies.empty())
        return std::nullopt;
    return m_replies.top().dueNs;
}

std::vector<ReplyQueue::Reply> ReplyQueue::takeDue(int64_t nowNs)
{
    std::vector<Reply> due;
    while (!m_replies.empty() && m_replies.top().dueNs <= nowNs) {
        due.push_back(m_replies.top());
        m_replies.pop();
    }
    return due;
}
