#include <windows.h>

#include "platform/PriorityClass.h"

namespace tavlo {

void setPriorityClass(PriorityClass priority) {
    SetPriorityClass(GetCurrentProcess(), static_cast<DWORD>(priority));
}

}  // namespace tavlo
