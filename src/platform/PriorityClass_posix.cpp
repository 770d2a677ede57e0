#include <sys/resource.h>

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

}  // namespace tavlo
