#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "core/Texts.h"
#include "platform/CodePage.h"
#include "platform/File.h"
#include "tags/ID3tag.h"
#include "tags/TagReading.h"
#include "tags/UpdateTags.h"

namespace tavlo {

/// One tag of a file, read for itself.
struct TagLayer {
    TagKind kind = TagKind::ID3v1;
    std::string name;  ///< with its version: "ID3v2.3"
    TagSpan span;      ///< where it lies
    ID3tag record;     ///< what it alone says
};

/// Those that are there, from the weakest to the strongest. A block that begins inside another tag
/// is none.
std::vector<TagLayer> readLayers(File& file, FileTypes type, const CodePage& ansi);

/// A field as every layer tells it.
struct LayerRow {
    Text caption = {};
    std::vector<std::string> values;  ///< one for each layer; empty where it has none
    /// Two layers tell it differently. What is only cut to the room that ID3v1 has, or stands for
    /// characters that its code page lacks, is no conflict.
    bool conflicts = false;
};

/// All fields, in the order in which they are shown.
std::vector<LayerRow> layerRows(const std::vector<TagLayer>& layers, const CodePage& ansi);

/// Sets the fields that a layer has, each by the record's setters; what it lacks stays. Where a
/// stronger tag says the same, and in full what ID3v1 had to cut, that one's is taken.
void takeLayer(ID3tag& record, const std::vector<TagLayer>& layers, std::size_t chosen,
               const CodePage& ansi);

/// Writes the values of one layer into every tag of the record's file that can be written: an APEv2
/// tag that is there as well, whatever the settings say. A Lyrics3 block stays as it is.
TagUpdate carryOver(ID3tag& record, const std::vector<TagLayer>& layers, std::size_t chosen,
                    WriteContext context);

}  // namespace tavlo
