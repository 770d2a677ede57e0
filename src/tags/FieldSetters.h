#pragma once

#include <string>
#include <string_view>

#include "tags/ID3tag.h"

namespace tavlo {

/// What the readers' tables of frames and items call, each with a text that is not empty.
template <std::string cID3v2ext::*field>
void setField(ID3tag& record, std::string_view text) {
    record.ID3v2Ext.*field = text;
}

/// "3", or "3/12" where the count is known and the number does not tell it.
inline std::string withCount(std::string number, int count) {
    if (count <= 0 || number.find('/') != std::string::npos) return number;
    if (number.empty()) number = "0";
    return number + "/" + std::to_string(count);
}

/// "0" is no track number and does not hide another tag's.
inline void setTrack(ID3tag& record, std::string_view text) {
    if (text != "0") record.SetNumber(text);
}

}  // namespace tavlo
