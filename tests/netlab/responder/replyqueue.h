#pragma once

#include <cstdint>
#include <optional>
#include <queue>
#include <vector>

// Replies waiting for the moment they are due, so that a long delay never holds up a short one.
class ReplyQueue
{
public:
    struct Reply {
        int64_t dueNs; // CLOCK_MONOTONIC
        uint64_t order;
        uint32_t destination; // host byte order
        std::vector<uint8_t> packet;
    };

    // False when the queue is full; the reply is then dropped like a lost packet.
    bool push(int64_t dueNs, uint32_t destination, std::vector<uint8_t> packet);
    std::optional<int64_t> nextDueNs() const;
    // Every reply due by nowNs, earliest first; replies due together keep their arrival order.
    std::vector<Reply> takeDue(int64_t nowNs);

private:
    struct Later {
        bool operator()(const Reply &a, const Reply &b) const;
    };

    std::priority_queue<Reply, std::vector<Reply>, Later> m_replies;
    uint64_t m_nextOrder = 0;
};
