#pragma once

#include <string_view>

#include "tags/ID3tag.h"

namespace tavlo {

/// What the readers' tables of frames and items call, each with a text that is not empty.
template <std::string cID3v2ext::*field>
void setField(ID3tag& record, std::string_view text) {
    record.ID3v2Ext.*field = text;
}

/// "0" is no track number and does not hide another tag's.
inline void setTrack(ID3tag& record, std::string_view text) {
    if (text != "0") record.SetNumber(text);
}

}  // namespace tavlo
