#pragma once

#include "core/TextSink.h"
#include "platform/Console.h"

namespace tavlo {

/// Text straight to a stream of the console, each call one write.
class ConsoleSink : public TextSink {
 public:
    explicit ConsoleSink(Stream stream) : stream_(stream) {}

    bool write(std::string_view text) override { return writeText(stream_, text); }

 private:
    Stream stream_;
};

}  // namespace tavlo
