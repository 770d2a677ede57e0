#include <windows.h>

#include "platform/PriorityClass.h"

namespace tavlo {

void setPriorityClass(PriorityClass priority) {
    SetPriorityClass(GetCurrentProcess(), static_cast<DWORD>(priority));
}

void setPriorityClassOf(std::intptr_t process, PriorityClass priority) {
    SetPriorityClass(reinterpret_cast<HANDLE>(process), static_cast<DWORD>(priority));
}

void giveWayToOtherThreads() {
    SetThreadPriority(GetCurrentThread(), THREAD_PRIORITY_BELOW_NORMAL);
}

}  // namespace tavlo
