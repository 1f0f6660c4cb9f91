#include "lists/spreadsheet/SaxPart.h"

#include <libxml/parser.h>
#include <libxml/xmlerror.h>

#include <cstring>
#include <vector>

namespace lists::sheet {

bool SaxPart::parse(const Archive& archive, const QString& part, platform::ReadError* error) {
    QString reason;
    const std::unique_ptr<Archive::Member> member = archive.openMember(part, &reason);
    if (!member) return platform::fail(error, platform::ReadError::reason(reason));
    xmlSAXHandler handler{};
    handler.initialized = XML_SAX2_MAGIC;
    handler.startElementNs = [](void* self, const xmlChar* name, const xmlChar*, const xmlChar*, int,
                                const xmlChar**, int count, int, const xmlChar** attributes) {
        auto* part = static_cast<SaxPart*>(self);
        // The parser keeps a stack of the open elements, so depth costs memory however little
        // the file is: no spreadsheet nests its elements more than a few dozen deep.
        if (++part->m_depth > kDeepest)
            return part->stop(
                QStringLiteral("osassa %1 on yli %2 sisäkkäistä elementtiä").arg(part->m_part).arg(kDeepest));
        part->start(reinterpret_cast<const char*>(name), attributes, count);
    };
    handler.endElementNs = [](void* self, const xmlChar* name, const xmlChar*, const xmlChar*) {
        auto* part = static_cast<SaxPart*>(self);
        --part->m_depth;
        part->end(reinterpret_cast<const char*>(name));
    };
    handler.characters = [](void* self, const xmlChar* chars, int length) {
        static_cast<SaxPart*>(self)->text(reinterpret_cast<const char*>(chars), length);
    };
    handler.cdataBlock = handler.characters;
    // Blanks are text like any other: a cell of spaces only keeps them.
    handler.ignorableWhitespace = handler.characters;
    handler.serror = [](void*, xmlErrorPtr) {}; // reported below, not printed
    m_ctxt = xmlCreatePushParserCtxt(&handler, this, nullptr, 0, nullptr);
    if (!m_ctxt)
        return platform::fail(error, platform::ReadError::reason(QStringLiteral("osaa ") + part +
                                                                 QStringLiteral(" ei voi lukea")));
    xmlCtxtUseOptions(m_ctxt, XML_PARSE_NONET | XML_PARSE_NOERROR | XML_PARSE_NOWARNING);
    m_stopped.clear();
    m_finished = false;
    m_depth = 0;
    m_part = part;
    platform::ReadError failure;
    const bool ok = pushMember(*member, failure);
    xmlFreeParserCtxt(m_ctxt);
    m_ctxt = nullptr;
    if (!ok) platform::fail(error, std::move(failure));
    return ok;
}

bool SaxPart::pushMember(Archive::Member& member, platform::ReadError& failure) {
    std::vector<char> piece(std::size_t(1) << 16);
    bool ok = true;
    for (;;) {
        const qsizetype n = member.read(piece.data(), static_cast<qsizetype>(piece.size()));
        if (n < 0) {
            ok = false;
            failure.what = member.error();
            break;
        }
        const int status = xmlParseChunk(m_ctxt, piece.data(), static_cast<int>(n), n == 0);
        if (m_finished) break;
        if (status != 0 || !m_stopped.isEmpty()) {
            ok = false;
            break;
        }
        if (n == 0) break;
    }
    if (ok && !m_finished && !m_ctxt->wellFormed) ok = false;
    if (!ok && failure.what.isEmpty()) {
        if (!m_stopped.isEmpty()) {
            failure.what = m_stopped;
        } else {
            // Where, not the parser's English words for what.
            const xmlErrorPtr e = xmlCtxtGetLastError(m_ctxt);
            failure = {QStringLiteral("ei ole kelvollista XML:ää"),
                       m_part,
                       {},
                       -1,
                       e ? e->line : 0,
                       e ? e->int2 : 0};
        }
    }
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

std::string_view saxAttribute(const xmlChar** attributes, int count, std::string_view name) {
    for (int i = 0; i < count; ++i)
        if (name == reinterpret_cast<const char*>(attributes[5 * i]))
            return {reinterpret_cast<const char*>(attributes[5 * i + 3]),
                    static_cast<std::size_t>(attributes[5 * i + 4] - attributes[5 * i + 3])};
    return {};
}

bool hasSaxAttribute(const xmlChar** attributes, int count, std::string_view name) {
    for (int i = 0; i < count; ++i)
        if (name == reinterpret_cast<const char*>(attributes[5 * i])) return true;
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
