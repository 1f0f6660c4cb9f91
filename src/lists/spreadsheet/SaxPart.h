#pragma once
// libxml2's SAX parser over one XML part of an archive, reading the part as it is unpacked (a
// tree or a text reader is several times slower on a sheet of thousands of rows, and a part is
// never held whole, so a sheet that unpacks to hundreds of megabytes of blanks costs no
// memory). A sheet and its shared strings go through PlainXml first, which makes the same
// calls in a fraction of the time.
#include "lists/spreadsheet/Archive.h"
#include "platform/ReadError.h"

#include <QString>

#include <string>
#include <string_view>

struct _xmlParserCtxt;
typedef unsigned char xmlChar;

namespace lists::sheet {

// The longest text of one cell or string kept, in bytes of UTF-8: far beyond what a
// spreadsheet program lets a cell hold (32767 characters), so only a damaged or hostile file
// reaches it.
constexpr std::size_t kLongestText = std::size_t(1) << 20;

class SaxPart {
public:
    virtual ~SaxPart() = default;

    // Parses the part. On failure returns false with what failed and where in `error`: the
    // part and the line and column of bad XML, or the reason a callback stopped it.
    bool parse(const Archive& archive, const QString& part, platform::ReadError* error);

protected:
    // `attributes` holds `count` entries of five pointers: local name, prefix, URI, value, end.
    virtual void start(std::string_view name, const xmlChar** attributes, int count) = 0;
    virtual void end(std::string_view name) = 0;
    virtual void text(const char* chars, int length) = 0;

    // A part that reads elements and attributes by their local names only, and can start
    // again from nothing (rewind()), is read by PlainXml first: most parts are plain enough,
    // and those that are not are parsed by libxml2 after the rewind.
    virtual bool plainXml() const { return false; }
    virtual void rewind() {}

    // Stops the parse from a callback; `reason` becomes the error.
    void stop(const QString& reason);
    // Ends the parse from a callback: all that is needed has been read.
    void finish();
    // Appends text of one cell or string; stops the parse when it grows beyond kLongestText.
    void append(std::string& to, const char* chars, int length);

private:
    class Plain;
    void begin(const QString& part);
    bool parseWithLibxml(Archive::Member& member, platform::ReadError* error);
    void onStart(std::string_view name, const xmlChar** attributes, int count);
    void onEnd(std::string_view name);
    bool going() const { return m_stopped.isEmpty() && !m_finished; }

    // The deepest nesting of elements parsed.
    static constexpr int kDeepest = 256;
    _xmlParserCtxt* m_ctxt = nullptr;
    int m_depth = 0;
    QString m_part;
    QString m_stopped;
    bool m_finished = false;
};

// The value of the attribute with the local name `name`; empty when there is none.
std::string_view saxAttribute(const xmlChar** attributes, int count, std::string_view name);
// Whether the attribute is there at all.
bool hasSaxAttribute(const xmlChar** attributes, int count, std::string_view name);
// The prefix of the i-th attribute ("office" of office:value-type).
std::string_view saxAttributePrefix(const xmlChar** attributes, int i);

QString fromUtf8(std::string_view s);

} // namespace lists::sheet
