#pragma once

#include <string>

#include "tags/ID3tag.h"

namespace tavlo {

/// What tables of fields call: the text that a getter gives.
template <auto getter>
std::string gotten(const ID3tag& record) {
    return std::string((record.*getter)());
}

}  // namespace tavlo
