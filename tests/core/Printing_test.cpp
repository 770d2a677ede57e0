#include <gtest/gtest.h>

#include "core/ConsoleProgress.h"
#include "core/ErrorReport.h"
#include "core/JsonLine.h"
#include "platform/PlainText.h"
#include "support/MemorySink.h"

namespace tavlo {
namespace {

struct Case {
    std::string text;   // behind "a", before "z"
    std::string shown;  // to people
    std::string json;
};

const std::string box = "\uFFFD";

const Case cases[] = {
    {"\x1B[2J", box + "[2J", "\\u001B[2J"},
    {"\x01\x1F", box + box, "\\u0001\\u001F"},
    {"\x7F", box, "\\u007f"},
    {"\n\r\t", "   ", "\\n\\r\\t"},
    {"\u0080\u009B\u009F", box + box + box, "\\u0080\\u009b\\u009f"},
    {"\u200E\u200F\u061C", box + box + box, "\\u200e\\u200f\\u061c"},
    {"\u202A\u202E\u2066\u2069", box + box + box + box, "\\u202a\\u202e\\u2066\\u2069"},
    {"\u2028\u2029", box + box, "\\u2028\\u2029"},
    // No UTF-8, but a control character where a terminal reads bytes.
    {"\x9B\x31m", box + "1m", "\\udc9b1m"},
    // Letters beside those stay.
    {"\u00A0\u00E9\u0619\u061D\u200D\u2027\u202F\u2065\u206A", "", ""},
    {"Ж漢😀\"", "", "Ж漢😀\\\""},
};

TEST(Printing, NothingThatATerminalActsOnGetsThere) {
    const Texts texts;
    for (const Case& each : cases) {
        const std::string name = "a" + each.text + "z";
        const std::string shown = "a" + (each.shown.empty() ? each.text : each.shown) + "z";
        EXPECT_EQ(withoutControls(name), shown);
        EXPECT_EQ(printable(shown + "\n\t", "\n\t"), shown + "\n\t");
        EXPECT_EQ(hasUnseen(name), shown != name) << shown;
        test::MemorySink sink;
        ErrorReport(texts, sink).reportLine(name);
        EXPECT_EQ(sink.text, shown + "\n");
        test::MemorySink terminal;
        ConsoleProgress(terminal, 80).report(name);
        EXPECT_EQ(terminal.text.substr(0, shown.size() + 3), "\r0 " + shown);
        JsonLine line;
        line.addName("n", name);
        EXPECT_EQ(line.finish(),
                  "{\"n\":\"a" + (each.json.empty() ? each.text : each.json) + "z\"}\n");
    }
}

}  // namespace
}  // namespace tavlo
