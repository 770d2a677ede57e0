#pragma once

#include "core/TextSink.h"
#include "platform/Console.h"
#include "platform/PlainText.h"

namespace tavlo {

/// Text straight to a stream of the console, each call one write. Whatever the names and tags in it
/// hold, nothing that does something to a terminal gets there but what lays the text out: the line
/// that shows progress goes back to its beginning.
class ConsoleSink : public TextSink {
 public:
    explicit ConsoleSink(Stream stream) : stream_(stream) {}

    bool write(std::string_view text) override {
        return writeText(stream_, printable(text, stream_ == Stream::Error ? "\n\t\r" : "\n\t"));
    }

 private:
    Stream stream_;
};

}  // namespace tavlo
