#include "lists/spreadsheet/PlainXml.h"

#include <array>
#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

namespace lists::sheet {

namespace {

const char kXmlNamespace[] = "http://www.w3.org/XML/1998/namespace";

// What each byte is to the scanner, looked up once a byte.
enum : unsigned char { kSpace = 1, kNameStart = 2, kNameChar = 4, kPlainText = 8 };
constexpr std::array<unsigned char, 256> kBytes = [] {
    std::array<unsigned char, 256> t{};
    for (int c = 0; c < 256; ++c) {
        const bool letter = (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_';
        const bool digit = c >= '0' && c <= '9';
        t[c] = static_cast<unsigned char>(
            (c == ' ' || c == '\t' || c == '\n' || c == '\r' ? kSpace : 0) | (letter ? kNameStart : 0) |
            (letter || digit || c == '-' || c == '.' ? kNameChar : 0) |
            // Text that needs no look: below 0x80, no control
            // character, no reference and no "]]>".
            (c >= 0x20 && c < 0x80 && c != '&' && c != ']' && c != '<' ? kPlainText : 0));
    }
    return t;
}();

bool isSpace(unsigned char c) {
    return kBytes[c] & kSpace;
}
bool isNameStart(unsigned char c) {
    return kBytes[c] & kNameStart;
}
bool isNameChar(unsigned char c) {
    return kBytes[c] & kNameChar;
}

// The length of the UTF-8 sequence at p (its first byte 0x80 or more) when it is a character
// XML allows; 0 when it is not one, -1 when it goes on past `end`.
int utf8Length(const unsigned char* p, const unsigned char* end) {
    const unsigned char c = p[0];
    std::uint32_t code = 0;
    int n = 0;
    if (c >= 0xC2 && c <= 0xDF) {
        n = 2;
        code = c & 0x1F;
    } else if (c >= 0xE0 && c <= 0xEF) {
        n = 3;
        code = c & 0x0F;
    } else if (c >= 0xF0 && c <= 0xF4) {
        n = 4;
        code = c & 0x07;
    } else {
        return 0;
    }
    if (end - p < n) return -1;
    for (int i = 1; i < n; ++i) {
        if ((p[i] & 0xC0) != 0x80) return 0;
        code = (code << 6) | (p[i] & 0x3F);
    }
    if (n == 3 && (code < 0x800 || (code >= 0xD800 && code <= 0xDFFF) || code >= 0xFFFE)) return 0;
    if (n == 4 && (code < 0x10000 || code > 0x10FFFF)) return 0;
    return n;
}

void appendUtf8(std::string& to, std::uint32_t code) {
    if (code < 0x80) {
        to += static_cast<char>(code);
    } else if (code < 0x800) {
        to += static_cast<char>(0xC0 | (code >> 6));
        to += static_cast<char>(0x80 | (code & 0x3F));
    } else if (code < 0x10000) {
        to += static_cast<char>(0xE0 | (code >> 12));
        to += static_cast<char>(0x80 | ((code >> 6) & 0x3F));
        to += static_cast<char>(0x80 | (code & 0x3F));
    } else {
        to += static_cast<char>(0xF0 | (code >> 18));
        to += static_cast<char>(0x80 | ((code >> 12) & 0x3F));
        to += static_cast<char>(0x80 | ((code >> 6) & 0x3F));
        to += static_cast<char>(0x80 | (code & 0x3F));
    }
}

// The character an entity or character reference (between & and ;) stands for; 0 for any
// other entity or a character XML does not allow.
std::uint32_t referenceValue(std::string_view name) {
    if (name == "lt") return '<';
    if (name == "gt") return '>';
    if (name == "amp") return '&';
    if (name == "quot") return '"';
    if (name == "apos") return '\'';
    if (name.size() < 2 || name[0] != '#') return 0;
    const bool hex = name[1] == 'x';
    const std::string_view digits = name.substr(hex ? 2 : 1);
    if (digits.empty() || digits.size() > 8) return 0;
    std::uint32_t code = 0;
    for (const char c : digits) {
        int d = -1;
        if (c >= '0' && c <= '9')
            d = c - '0';
        else if (hex && (c | 0x20) >= 'a' && (c | 0x20) <= 'f')
            d = (c | 0x20) - 'a' + 10;
        if (d < 0) return 0;
        code = code * (hex ? 16 : 10) + static_cast<std::uint32_t>(d);
    }
    const bool allowed = code == 0x9 || code == 0xA || code == 0xD || (code >= 0x20 && code <= 0xD7FF) ||
                         (code >= 0xE000 && code <= 0xFFFD) || (code >= 0x10000 && code <= 0x10FFFF);
    return allowed ? code : 0;
}

class Scanner {
public:
    Scanner(const PlainXml::Read& read, PlainXml::Events& events)
        : m_read(read)
        , m_events(events)
        , m_buffer(std::size_t(1) << 16) {}

    PlainXml::Result run();

private:
    enum class Step { Ok, More, Bad, Ended, Done };
    enum class State { Start, Prolog, Content, Epilog };
    struct Name {
        const char* begin = nullptr;
        const char* colon = nullptr; // null without a prefix
        const char* end = nullptr;
        std::string_view qualified() const { return {begin, static_cast<std::size_t>(end - begin)}; }
        std::string_view local() const {
            const char* at = colon ? colon + 1 : begin;
            return {at, static_cast<std::size_t>(end - at)};
        }
        std::string_view prefix() const {
            return colon ? std::string_view(begin, static_cast<std::size_t>(colon - begin))
                         : std::string_view();
        }
    };
    struct Attribute {
        Name name;
        const char* value;
        const char* valueEnd;
    };

    bool fill();
    Step step();
    Step declaration();
    // The declaration's pseudo-attributes between `at` and `stop`, in their order, each at most
    // once: whether they are as this scanner reads them.
    static bool pseudoAttributesFine(const char* at, const char* stop);
    Step startTag();
    // One attribute at p, after its blank: name, "=", quoted value.
    static Step attribute(const char*& p, const char* end, Attribute& a);
    bool repeatedAttribute() const;
    // The attributes as libxml2 gives them, into m_saxAttributes; gives their count.
    int saxAttributes();
    Step endTag();
    Step text();
    // A name at p; More when it reaches `end`.
    static Step name(const char*& p, const char* end, Name& out);
    static bool isNamespaceDeclaration(const Name& n) {
        return n.qualified() == "xmlns" || n.prefix() == "xmlns";
    }

    const char* data() const { return m_buffer.data(); }
    char* writable(const char* at) { return m_buffer.data() + (at - data()); }

    const PlainXml::Read& m_read;
    PlainXml::Events& m_events;
    std::vector<char> m_buffer;
    qsizetype m_pos = 0;
    qsizetype m_end = 0;
    bool m_eof = false;
    bool m_failed = false;
    State m_state = State::Start;
    std::vector<std::string> m_open; // the open elements' qualified names
    std::size_t m_depth = 0;
    std::vector<Attribute> m_attributes;
    std::vector<const xmlChar*> m_saxAttributes;
    std::string m_text;
};

PlainXml::Result Scanner::run() {
    for (;;) {
        switch (step()) {
            case Step::Ok:
                break;
            case Step::Bad:
                return PlainXml::Result::NotPlain;
            case Step::Ended:
                return PlainXml::Result::Ended;
            case Step::Done:
                return PlainXml::Result::Done;
            case Step::More:
                if (!fill()) return m_failed ? PlainXml::Result::ReadFailed : PlainXml::Result::NotPlain;
                break;
        }
    }
}

bool Scanner::fill() {
    if (m_eof) return false;
    if (m_pos > 0) {
        std::memmove(m_buffer.data(), m_buffer.data() + m_pos, static_cast<std::size_t>(m_end - m_pos));
        m_end -= m_pos;
        m_pos = 0;
    }
    if (m_end == static_cast<qsizetype>(m_buffer.size())) {
        // One token fills the buffer: a larger one, up to the longest read at once.
        if (m_end >= PlainXml::kLongestToken) return false;
        m_buffer.resize(std::min<std::size_t>(m_buffer.size() * 2, PlainXml::kLongestToken));
    }
    const qsizetype n = m_read(m_buffer.data() + m_end, static_cast<qsizetype>(m_buffer.size()) - m_end);
    if (n < 0) {
        m_failed = true;
        return false;
    }
    if (n == 0) m_eof = true;
    m_end += n;
    return true;
}

Scanner::Step Scanner::step() {
    const char* p = data() + m_pos;
    const char* end = data() + m_end;
    switch (m_state) {
        case State::Start:
            return declaration();
        case State::Prolog:
        case State::Epilog:
            while (p < end && isSpace(static_cast<unsigned char>(*p)))
                ++p;
            m_pos = p - data();
            if (p == end) return m_eof && m_state == State::Epilog ? Step::Done : Step::More;
            if (m_state == State::Epilog || *p != '<') return Step::Bad;
            return startTag();
        case State::Content:
            if (p == end) return Step::More;
            if (*p != '<') return text();
            if (end - p < 2) return Step::More;
            return p[1] == '/' ? endTag() : startTag();
    }
    return Step::Bad;
}

// A byte-order mark and the XML declaration: version 1.0, UTF-8 when an encoding is named.
Scanner::Step Scanner::declaration() {
    const char* p = data() + m_pos;
    const char* end = data() + m_end;
    if (end - p < 6 && !m_eof) return Step::More;
    if (end - p >= 3 && std::memcmp(p, "\xEF\xBB\xBF", 3) == 0) p += 3;
    if (end - p < 2 || std::memcmp(p, "<?", 2) != 0) {
        m_pos = p - data();
        m_state = State::Prolog;
        return Step::Ok;
    }
    if (end - p < 6 || std::memcmp(p, "<?xml", 5) != 0 || !isSpace(static_cast<unsigned char>(p[5])))
        return Step::Bad;
    const char* close = static_cast<const char*>(memchr(p, '>', static_cast<std::size_t>(end - p)));
    if (!close) return Step::More;
    if (close[-1] != '?') return Step::Bad;
    if (!pseudoAttributesFine(p + 5, close - 1)) return Step::Bad;
    m_pos = close + 1 - data();
    m_state = State::Prolog;
    return Step::Ok;
}

bool Scanner::pseudoAttributesFine(const char* at, const char* stop) {
    const char* names[] = {"version", "encoding", "standalone"};
    int next = 0;
    bool any = false;
    for (;;) {
        const char* spaceAt = at;
        while (at < stop && isSpace(static_cast<unsigned char>(*at)))
            ++at;
        if (at == stop) break;
        if (at == spaceAt) return false;
        const char* nameEnd = at;
        while (nameEnd < stop && isNameChar(static_cast<unsigned char>(*nameEnd)))
            ++nameEnd;
        const std::string_view key(at, static_cast<std::size_t>(nameEnd - at));
        while (next < 3 && key != names[next])
            ++next;
        if (next == 3 || (!any && next != 0)) return false;
        at = nameEnd;
        while (at < stop && isSpace(static_cast<unsigned char>(*at)))
            ++at;
        if (at == stop || *at != '=') return false;
        ++at;
        while (at < stop && isSpace(static_cast<unsigned char>(*at)))
            ++at;
        if (at == stop || (*at != '"' && *at != '\'')) return false;
        const char quote = *at++;
        const char* valueEnd =
            static_cast<const char*>(memchr(at, quote, static_cast<std::size_t>(stop - at)));
        if (!valueEnd) return false;
        const std::string_view value(at, static_cast<std::size_t>(valueEnd - at));
        bool fine = false;
        if (next == 0) {
            fine = value == "1.0";
        } else if (next == 1) {
            // The encoding's name in any letter case.
            std::string upper(value);
            for (char& c : upper)
                if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 'a' + 'A');
            fine = upper == "UTF-8";
        } else {
            fine = value == "yes" || value == "no";
        }
        if (!fine) return false;
        any = true;
        ++next;
        at = valueEnd + 1;
    }
    return any;
}

Scanner::Step Scanner::name(const char*& p, const char* end, Name& out) {
    out = Name{p, nullptr, nullptr};
    if (p == end) return Step::More;
    if (!isNameStart(static_cast<unsigned char>(*p))) return Step::Bad;
    for (++p; p < end; ++p) {
        const auto c = static_cast<unsigned char>(*p);
        if (isNameChar(c)) continue;
        if (c != ':') break;
        // One colon, with a name on each side.
        if (out.colon || p + 1 == end) return p + 1 == end ? Step::More : Step::Bad;
        if (!isNameStart(static_cast<unsigned char>(p[1]))) return Step::Bad;
        out.colon = p;
    }
    if (p == end) return Step::More;
    out.end = p;
    return Step::Ok;
}

Scanner::Step Scanner::attribute(const char*& p, const char* end, Attribute& a) {
    if (const Step s = name(p, end, a.name); s != Step::Ok) return s;
    while (p < end && isSpace(static_cast<unsigned char>(*p)))
        ++p;
    if (p == end) return Step::More;
    if (*p != '=') return Step::Bad;
    ++p;
    while (p < end && isSpace(static_cast<unsigned char>(*p)))
        ++p;
    if (p == end) return Step::More;
    if (*p != '"' && *p != '\'') return Step::Bad;
    const char quote = *p++;
    a.value = p;
    // Values that need more than reading (references, blanks the parser would normalise)
    // are left to libxml2.
    while (p < end && *p != quote) {
        const auto c = static_cast<unsigned char>(*p);
        if ((kBytes[c] & kPlainText) || c == ']') {
            ++p;
            continue;
        }
        if (c < 0x80) return Step::Bad; // "<", "&" or a control character
        const int n = utf8Length(reinterpret_cast<const unsigned char*>(p),
                                 reinterpret_cast<const unsigned char*>(end));
        if (n < 0) return Step::More;
        if (n == 0) return Step::Bad;
        p += n;
    }
    if (p == end) return Step::More;
    a.valueEnd = p++;
    return Step::Ok;
}

// An attribute given twice (by name, or by local name under two prefixes that might stand
// for the same namespace) is for libxml2 to judge.
bool Scanner::repeatedAttribute() const {
    for (std::size_t i = 0; i < m_attributes.size(); ++i)
        for (std::size_t j = 0; j < i; ++j) {
            const Name& a = m_attributes[i].name;
            const Name& b = m_attributes[j].name;
            if (a.qualified() == b.qualified() ||
                (!isNamespaceDeclaration(a) && !isNamespaceDeclaration(b) && a.local() == b.local()))
                return true;
        }
    return false;
}

// The attributes as libxml2 gives them, namespace declarations left out. Their names end
// with NUL: written over the byte after each name (a blank or "=") and over the colon of a
// prefix, in the buffer, which is not read again.
int Scanner::saxAttributes() {
    m_saxAttributes.clear();
    for (const Attribute& a : m_attributes) {
        if (isNamespaceDeclaration(a.name)) continue;
        const bool xml = a.name.prefix() == "xml";
        const char* local = a.name.colon ? a.name.colon + 1 : a.name.begin;
        const char* prefix = a.name.colon ? a.name.begin : nullptr;
        *writable(a.name.end) = '\0';
        if (prefix) *writable(a.name.colon) = '\0';
        m_saxAttributes.push_back(reinterpret_cast<const xmlChar*>(local));
        m_saxAttributes.push_back(reinterpret_cast<const xmlChar*>(prefix));
        m_saxAttributes.push_back(xml ? reinterpret_cast<const xmlChar*>(kXmlNamespace) : nullptr);
        m_saxAttributes.push_back(reinterpret_cast<const xmlChar*>(a.value));
        m_saxAttributes.push_back(reinterpret_cast<const xmlChar*>(a.valueEnd));
    }
    return static_cast<int>(m_saxAttributes.size() / 5);
}

Scanner::Step Scanner::startTag() {
    const char* p = data() + m_pos + 1;
    const char* end = data() + m_end;
    Name element;
    if (const Step s = name(p, end, element); s != Step::Ok) return s;
    m_attributes.clear();
    bool empty = false;
    for (;;) {
        bool spaced = false;
        while (p < end && isSpace(static_cast<unsigned char>(*p))) {
            ++p;
            spaced = true;
        }
        if (p == end) return Step::More;
        if (*p == '>') {
            ++p;
            break;
        }
        if (*p == '/') {
            if (p + 1 == end) return Step::More;
            if (p[1] != '>') return Step::Bad;
            p += 2;
            empty = true;
            break;
        }
        if (!spaced) return Step::Bad;
        Attribute a;
        if (const Step s = attribute(p, end, a); s != Step::Ok) return s;
        m_attributes.push_back(a);
    }
    if (repeatedAttribute()) return Step::Bad;
    m_pos = p - data();
    if (!empty) {
        if (m_open.size() <= m_depth) m_open.emplace_back();
        m_open[m_depth++].assign(element.qualified());
    }

    const int count = saxAttributes();
    m_state = State::Content;
    if (!m_events.start(element.local(), m_saxAttributes.data(), count)) return Step::Ended;
    if (empty) {
        if (!m_events.end(element.local())) return Step::Ended;
        if (m_depth == 0) m_state = State::Epilog;
    }
    return Step::Ok;
}

Scanner::Step Scanner::endTag() {
    const char* p = data() + m_pos + 2;
    const char* end = data() + m_end;
    Name element;
    if (const Step s = name(p, end, element); s != Step::Ok) return s;
    while (p < end && isSpace(static_cast<unsigned char>(*p)))
        ++p;
    if (p == end) return Step::More;
    if (*p != '>' || m_depth == 0 || m_open[m_depth - 1] != element.qualified()) return Step::Bad;
    m_pos = p + 1 - data();
    --m_depth;
    if (m_depth == 0) m_state = State::Epilog;
    return m_events.end(element.local()) ? Step::Ok : Step::Ended;
}

Scanner::Step Scanner::text() {
    const char* begin = data() + m_pos;
    const char* end = data() + m_end;
    const char* lt = static_cast<const char*>(memchr(begin, '<', static_cast<std::size_t>(end - begin)));
    if (!lt) return Step::More;
    bool plain = true;
    for (const char* p = begin; p < lt;) {
        const auto c = static_cast<unsigned char>(*p);
        if (kBytes[c] & kPlainText) {
            ++p;
        } else if (c >= 0x80) {
            const int n = utf8Length(reinterpret_cast<const unsigned char*>(p),
                                     reinterpret_cast<const unsigned char*>(lt));
            if (n <= 0) return Step::Bad;
            p += n;
        } else if (c == ']') {
            if (lt - p >= 3 && p[1] == ']' && p[2] == '>') return Step::Bad;
            ++p;
        } else if (c == '&') {
            const char* semicolon =
                static_cast<const char*>(memchr(p, ';', static_cast<std::size_t>(lt - p)));
            if (!semicolon || referenceValue({p + 1, static_cast<std::size_t>(semicolon - p - 1)}) == 0)
                return Step::Bad;
            plain = false;
            p = semicolon + 1;
        } else if (c == '\r') {
            plain = false;
            ++p;
        } else if (c == '\t' || c == '\n') {
            ++p;
        } else {
            return Step::Bad;
        }
    }
    m_pos = lt - data();
    if (plain) return m_events.text(begin, static_cast<int>(lt - begin)) ? Step::Ok : Step::Ended;
    // References replaced, line ends (CR LF, CR) as LF.
    m_text.clear();
    for (const char* p = begin; p < lt;) {
        if (*p == '&') {
            const char* semicolon =
                static_cast<const char*>(memchr(p, ';', static_cast<std::size_t>(lt - p)));
            appendUtf8(m_text, referenceValue({p + 1, static_cast<std::size_t>(semicolon - p - 1)}));
            p = semicolon + 1;
        } else if (*p == '\r') {
            m_text += '\n';
            p += p + 1 < lt && p[1] == '\n' ? 2 : 1;
        } else {
            m_text += *p++;
        }
    }
    return m_events.text(m_text.data(), static_cast<int>(m_text.size())) ? Step::Ok : Step::Ended;
}

} // namespace

PlainXml::Result PlainXml::scan(const Read& read, Events& events) {
    return Scanner(read, events).run();
}

} // namespace lists::sheet
