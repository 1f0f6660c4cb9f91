#pragma once
// The calls a parse of an XML part makes, written down one a line, so that PlainXml and
// libxml2's SAX2 parser can be compared on the same bytes. Adjacent texts are one (the parsers
// cut text at different places), attributes are local name, prefix and value.
#include "lists/spreadsheet/PlainXml.h"

#include <libxml/parser.h>
#include <libxml/parserInternals.h>

#include <algorithm>
#include <cstdint>
#include <string>
#include <string_view>

namespace xml_events {

class Log {
public:
    void start(std::string_view name, const xmlChar** attributes, int count) {
        flush();
        m_log += "<";
        m_log += name;
        for (int i = 0; i < count; ++i) {
            const auto* a = attributes + 5 * i;
            m_log += " ";
            if (a[1]) m_log += std::string(reinterpret_cast<const char*>(a[1])) + ":";
            m_log += reinterpret_cast<const char*>(a[0]);
            m_log += "=[";
            m_log.append(reinterpret_cast<const char*>(a[3]), static_cast<std::size_t>(a[4] - a[3]));
            m_log += "]";
            if (a[1] && std::string_view(reinterpret_cast<const char*>(a[1])) == "xml")
                m_log += a[2] ? "(xml)" : "(no uri)";
        }
        m_log += ">\n";
    }
    void end(std::string_view name) {
        flush();
        m_log += "</";
        m_log += name;
        m_log += ">\n";
    }
    void text(const char* chars, int length) { m_text.append(chars, static_cast<std::size_t>(length)); }
    const std::string& done() {
        flush();
        return m_log;
    }

private:
    void flush() {
        if (m_text.empty()) return;
        m_log += "\"" + m_text + "\"\n";
        m_text.clear();
    }
    std::string m_log;
    std::string m_text;
};

// PlainXml's calls, reading the bytes `piece` at a time.
class PlainLog : public lists::sheet::PlainXml::Events {
public:
    bool start(std::string_view name, const xmlChar** attributes, int count) override {
        log.start(name, attributes, count);
        return true;
    }
    bool end(std::string_view name) override {
        log.end(name);
        return true;
    }
    bool text(const char* chars, int length) override {
        log.text(chars, length);
        return true;
    }
    Log log;
};

inline lists::sheet::PlainXml::Result scanPlain(std::string_view bytes, std::size_t piece, std::string& log) {
    PlainLog events;
    std::size_t at = 0;
    const auto result = lists::sheet::PlainXml::scan(
        [&](char* to, qsizetype max) {
            const std::size_t n = std::min({bytes.size() - at, piece, static_cast<std::size_t>(max)});
            std::copy_n(bytes.data() + at, n, to);
            at += n;
            return static_cast<qsizetype>(n);
        },
        events);
    log = events.log.done();
    return result;
}

// libxml2's calls with the handlers the spreadsheet readers use; false when the bytes are not
// well formed.
inline bool parseWithLibxml(std::string_view bytes, std::string& log) {
    Log events;
    xmlSAXHandler handler{};
    handler.initialized = XML_SAX2_MAGIC;
    handler.startElementNs = [](void* self, const xmlChar* name, const xmlChar*, const xmlChar*, int,
                                const xmlChar**, int count, int, const xmlChar** attributes) {
        static_cast<Log*>(self)->start(reinterpret_cast<const char*>(name), attributes, count);
    };
    handler.endElementNs = [](void* self, const xmlChar* name, const xmlChar*, const xmlChar*) {
        static_cast<Log*>(self)->end(reinterpret_cast<const char*>(name));
    };
    handler.characters = [](void* self, const xmlChar* chars, int length) {
        static_cast<Log*>(self)->text(reinterpret_cast<const char*>(chars), length);
    };
    handler.cdataBlock = handler.characters;
    handler.ignorableWhitespace = handler.characters;
    handler.serror = [](void*, xmlErrorPtr) {};
    xmlParserCtxtPtr ctxt = xmlCreateMemoryParserCtxt(
        bytes.data(), static_cast<int>(std::min<std::size_t>(bytes.size(), INT32_MAX)));
    if (!ctxt) return false;
    xmlSAXHandler* own = ctxt->sax;
    ctxt->sax = &handler;
    ctxt->userData = &events;
    xmlCtxtUseOptions(ctxt, XML_PARSE_NONET | XML_PARSE_NOERROR | XML_PARSE_NOWARNING);
    xmlParseDocument(ctxt);
    const bool wellFormed = ctxt->wellFormed != 0;
    ctxt->sax = own;
    xmlFreeDoc(ctxt->myDoc);
    ctxt->myDoc = nullptr;
    xmlFreeParserCtxt(ctxt);
    log = events.done();
    return wellFormed;
}

} // namespace xml_events
