#include <sys/resource.h>
#include <unistd.h>

#include "platform/PriorityClass.h"

namespace tavlo {
namespace {

int niceness(PriorityClass priority) {
    switch (priority) {
        case PriorityClass::Idle:
            return 19;
        case PriorityClass::High:
            return -10;
        case PriorityClass::Normal:
            break;
    }
    return 0;
}

}  // namespace

void setPriorityClass(PriorityClass priority) {
    setpriority(PRIO_PROCESS, 0, niceness(priority));
}

void setPriorityClassOf(std::intptr_t process, PriorityClass priority) {
    // Of a process this would reach its first thread only.
    setpriority(PRIO_PGRP, static_cast<id_t>(process), niceness(priority));
}

// Linux counts niceness by thread.
void giveWayToOtherThreads() {
    constexpr int steps = 5;
    const auto thread = static_cast<id_t>(gettid());
    setpriority(PRIO_PROCESS, thread, getpriority(PRIO_PROCESS, thread) + steps);
}

}  // namespace tavlo
