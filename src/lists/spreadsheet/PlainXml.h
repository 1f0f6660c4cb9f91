#pragma once
// A scanner for the plain XML that spreadsheet programs write into a sheet or its shared
// strings: elements, attributes and text in UTF-8, the five predefined entities and character
// references, an XML declaration. It makes the same calls as libxml2's SAX2 parser for such a
// part, at a fraction of the cost, for handlers that go by local names (it resolves no
// namespace: every attribute's URI is null, except xml:'s).
//
// Anything else (a DOCTYPE, other entities, CDATA, comments, processing instructions, another
// encoding, a token longer than kLongestToken) and anything not well formed makes it give up:
// the caller then parses the part again with libxml2, which decides what it means.
#include <QtGlobal>

#include <functional>
#include <string_view>

typedef unsigned char xmlChar;

namespace lists::sheet {

class PlainXml {
public:
    // The calls of a parse; each returns false to end it.
    class Events {
    public:
        virtual ~Events() = default;
        // `attributes` holds `count` entries of five pointers: local name, prefix, URI, value,
        // end of the value, as libxml2 gives them.
        virtual bool start(std::string_view name, const xmlChar** attributes, int count) = 0;
        virtual bool end(std::string_view name) = 0;
        virtual bool text(const char* chars, int length) = 0;
    };
    // Reads up to `max` bytes of the part into `to`: the count read, 0 at the end, -1 on failure.
    using Read = std::function<qsizetype(char* to, qsizetype max)>;

    enum class Result {
        Done,      // the whole part, well formed
        Ended,     // a call returned false
        NotPlain,  // more than this scanner reads, or not well formed
        ReadFailed // `read` failed
    };

    // The longest tag or text run (between two tags) read at once.
    static constexpr qsizetype kLongestToken = qsizetype(1) << 20;

    static Result scan(const Read& read, Events& events);
};

} // namespace lists::sheet
