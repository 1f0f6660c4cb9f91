// The scanner of plain sheet XML against libxml2: whatever the scanner reads to the end, libxml2
// must find well formed and read to the same calls, in pieces of any size.
#include "lists/XmlEvents.h"

#include <cstdlib>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size == 0) return 0;
    // The first byte chooses the size of the pieces the scanner reads.
    const std::size_t piece = 1 + data[0] % 64;
    const std::string_view xml(reinterpret_cast<const char*>(data) + 1, size - 1);
    std::string plain;
    if (xml_events::scanPlain(xml, piece, plain) != lists::sheet::PlainXml::Result::Done) return 0;
    std::string expected;
    if (!xml_events::parseWithLibxml(xml, expected) || plain != expected) abort();
    return 0;
}
