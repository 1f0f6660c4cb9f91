#include "lists/spreadsheet/SaxPart.h"

#include "lists/spreadsheet/PlainXml.h"

#include <libxml/parser.h>
#include <libxml/xmlerror.h>

#include <cstring>
#include <vector>

namespace lists::sheet {

namespace {

QString tooDeep(const QString& part, int deepest) {
    return QStringLiteral("osassa %1 on yli %2 sisäkkäistä elementtiä").arg(part).arg(deepest);
}

} // namespace

// The scanner's calls go to the part as libxml2's do.
class SaxPart::Plain : public PlainXml::Events {
public:
    explicit Plain(SaxPart& part)
        : m_part(part) {}
    bool start(std::string_view name, const xmlChar** attributes, int count) override {
        m_part.onStart(name, attributes, count);
        return m_part.going();
    }
    bool end(std::string_view name) override {
        m_part.onEnd(name);
        return m_part.going();
    }
    bool text(const char* chars, int length) override {
        m_part.text(chars, length);
        return m_part.going();
    }

private:
    SaxPart& m_part;
};

void SaxPart::onStart(std::string_view name, const xmlChar** attributes, int count) {
    // The parser keeps a stack of the open elements, so depth costs memory however little the
    // file is: no spreadsheet nests its elements more than a few dozen deep.
    if (++m_depth > kDeepest) return stop(tooDeep(m_part, kDeepest));
    start(name, attributes, count);
}

void SaxPart::onEnd(std::string_view name) {
    --m_depth;
    end(name);
}

void SaxPart::begin(const QString& part) {
    m_stopped.clear();
    m_finished = false;
    m_depth = 0;
    m_part = part;
}

bool SaxPart::parse(const Archive& archive, const QString& part, platform::ReadError* error) {
    QString reason;
    std::unique_ptr<Archive::Member> member = archive.openMember(part, &reason);
    if (!member) return platform::fail(error, platform::ReadError::reason(reason));
    begin(part);
    if (plainXml()) {
        Plain events(*this);
        switch (PlainXml::scan([&](char* to, qsizetype max) { return member->read(to, max); }, events)) {
            case PlainXml::Result::Done:
                return true;
            case PlainXml::Result::Ended:
                return m_finished || platform::fail(error, platform::ReadError::reason(m_stopped));
            case PlainXml::Result::ReadFailed:
                return platform::fail(error, platform::ReadError::reason(member->error()));
            case PlainXml::Result::NotPlain:
                // From the start again, all of it with libxml2.
                rewind();
                begin(part);
                member = archive.openMember(part, &reason);
                if (!member) return platform::fail(error, platform::ReadError::reason(reason));
                break;
        }
    }
    return parseWithLibxml(*member, error);
}

bool SaxPart::parseWithLibxml(Archive::Member& member, platform::ReadError* error) {
    xmlSAXHandler handler{};
    handler.initialized = XML_SAX2_MAGIC;
    handler.startElementNs = [](void* self, const xmlChar* name, const xmlChar*, const xmlChar*, int,
                                const xmlChar**, int count, int, const xmlChar** attributes) {
        static_cast<SaxPart*>(self)->onStart(reinterpret_cast<const char*>(name), attributes, count);
    };
    handler.endElementNs = [](void* self, const xmlChar* name, const xmlChar*, const xmlChar*) {
        static_cast<SaxPart*>(self)->onEnd(reinterpret_cast<const char*>(name));
    };
    handler.characters = [](void* self, const xmlChar* chars, int length) {
        static_cast<SaxPart*>(self)->text(reinterpret_cast<const char*>(chars), length);
    };
    handler.cdataBlock = handler.characters;
    // Blanks are text like any other: a cell of spaces only keeps them.
    handler.ignorableWhitespace = handler.characters;
    handler.serror = [](void*, xmlErrorPtr) {}; // reported below, not printed
    // The parser pulls the member through a read callback: libxml2's pull parser reads far
    // fewer times over its input than its push parser (which looks ahead for each tag's end in
    // every chunk), and holds no more of the part than its input buffer.
    struct Source {
        Archive::Member* member;
        QString error;
    } source{&member, {}};
    m_ctxt = xmlCreateIOParserCtxt(
        &handler, this,
        [](void* context, char* buffer, int length) -> int {
            auto* from = static_cast<Source*>(context);
            const qsizetype n = from->member->read(buffer, length);
            if (n < 0) from->error = from->member->error();
            return static_cast<int>(n);
        },
        nullptr, &source, XML_CHAR_ENCODING_NONE);
    if (!m_ctxt)
        return platform::fail(error, platform::ReadError::reason(QStringLiteral("osaa ") + m_part +
                                                                 QStringLiteral(" ei voi lukea")));
    xmlCtxtUseOptions(m_ctxt, XML_PARSE_NONET | XML_PARSE_NOERROR | XML_PARSE_NOWARNING);
    xmlParseDocument(m_ctxt);
    platform::ReadError failure;
    bool ok = true;
    if (!source.error.isEmpty()) {
        ok = false;
        failure.what = source.error;
    } else if (!m_stopped.isEmpty()) {
        ok = false;
        failure.what = m_stopped;
    } else if (!m_finished && !m_ctxt->wellFormed) {
        // Where, not the parser's English words for what.
        ok = false;
        const xmlErrorPtr e = xmlCtxtGetLastError(m_ctxt);
        failure = {
            QStringLiteral("ei ole kelvollista XML:ää"), m_part, {}, -1, e ? e->line : 0, e ? e->int2 : 0};
    }
    // A document type declaration makes the parser build a document of its own for the
    // entities it declares, which freeing the parser leaves behind.
    xmlFreeDoc(m_ctxt->myDoc);
    m_ctxt->myDoc = nullptr;
    xmlFreeParserCtxt(m_ctxt);
    m_ctxt = nullptr;
    if (!ok) platform::fail(error, std::move(failure));
    return ok;
}

void SaxPart::stop(const QString& reason) {
    if (!m_stopped.isEmpty()) return;
    m_stopped = reason;
    if (m_ctxt) xmlStopParser(m_ctxt);
}

void SaxPart::finish() {
    if (!m_stopped.isEmpty() || m_finished) return;
    m_finished = true;
    if (m_ctxt) xmlStopParser(m_ctxt);
}

void SaxPart::append(std::string& to, const char* chars, int length) {
    if (to.size() + static_cast<std::size_t>(length) > kLongestText) {
        stop(QStringLiteral("solun teksti on yli %1 tavua pitkä").arg(kLongestText));
        return;
    }
    to.append(chars, static_cast<std::size_t>(length));
}

namespace {

// Whether the NUL-ended name is `name`, read no further than it needs (a cell's attributes are
// looked up several times for each cell).
bool isName(const xmlChar* attribute, std::string_view name) {
    const auto* a = reinterpret_cast<const char*>(attribute);
    for (const char c : name)
        if (*a++ != c) return false;
    return *a == '\0';
}

} // namespace

std::string_view saxAttribute(const xmlChar** attributes, int count, std::string_view name) {
    for (int i = 0; i < count; ++i)
        if (isName(attributes[5 * i], name))
            return {reinterpret_cast<const char*>(attributes[5 * i + 3]),
                    static_cast<std::size_t>(attributes[5 * i + 4] - attributes[5 * i + 3])};
    return {};
}

bool hasSaxAttribute(const xmlChar** attributes, int count, std::string_view name) {
    for (int i = 0; i < count; ++i)
        if (isName(attributes[5 * i], name)) return true;
    return false;
}

std::string_view saxAttributePrefix(const xmlChar** attributes, int i) {
    const xmlChar* prefix = attributes[5 * i + 1];
    return prefix ? std::string_view(reinterpret_cast<const char*>(prefix)) : std::string_view();
}

QString fromUtf8(std::string_view s) {
    return QString::fromUtf8(s.data(), static_cast<qsizetype>(s.size()));
}

} // namespace lists::sheet
