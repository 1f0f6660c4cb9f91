#include "print/PageCompression.h"

#include <zlib.h>

namespace {
thread_local bool t_fast = false;
// zlib's own defaults behind deflateInit: a 32 KiB window and its default memory level.
constexpr int kWindowBits = MAX_WBITS;
constexpr int kMemoryLevel = 8;
} // namespace

namespace print {

FastPageCompression::FastPageCompression()
    : m_before(t_fast) {
    t_fast = true;
}

FastPageCompression::~FastPageCompression() {
    t_fast = m_before;
}

bool FastPageCompression::active() {
    return t_fast;
}

} // namespace print

// zlib's deflateInit is a macro for this function; the program's definition comes before the
// library's for every caller in the process, Qt's PDF engine among them.
extern "C" int deflateInit_(z_streamp stream, int level, const char* version, int streamSize) {
    if (level == Z_DEFAULT_COMPRESSION && print::FastPageCompression::active()) level = Z_BEST_SPEED;
    return deflateInit2_(stream, level, Z_DEFLATED, kWindowBits, kMemoryLevel, Z_DEFAULT_STRATEGY, version,
                         streamSize);
}
