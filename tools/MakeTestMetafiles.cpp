// Writes two test metafiles of the platform tests with libUEMF, the metafile library that drawing
// programs write WMF and EMF with (run by hand, not part of the build):
//   tamrik_make_test_metafiles OUTDIR
// - uemf-drawing.wmf: a placeable WMF with a record of every kind such programs write (shapes,
//   paths, text, hatched and pattern brushes, clipping, bitmaps of each record type, PNG and
//   JPEG images, flood fills) and a region made as the library's own test drawing makes it,
//   with its counts laid out one word early;
// - printer-frame.emf: an EMF recorded for a 1200-dpi printer on an A4 landscape frame, so its
//   bounds are 14030 x 9920 device pixels.
#include <QBuffer>
#include <QByteArray>
#include <QImage>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <utility>

#include <uemf.h>
#include <uwmf.h>

namespace {

WMFTRACK* wt = nullptr;
WMFHANDLES* wht = nullptr;

// A record made by the library, or the end of the program when it could not make it.
char* made(char* record, int line) {
    if (!record) {
        std::fprintf(stderr, "a record failed at line %d\n", line);
        std::exit(1);
    }
    return record;
}
#define ADD(r) wmf_append(reinterpret_cast<U_METARECORD*>(made((r), __LINE__)), wt, 1)

QByteArray encoded(const char* format, const QColor& from, const QColor& to) {
    QImage image(10, 10, QImage::Format_RGB32);
    for (int y = 0; y < 10; ++y)
        for (int x = 0; x < 10; ++x)
            image.setPixelColor(x, y, x < y ? from : to);
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    image.save(&buffer, format);
    return bytes;
}

void gradient(char* px, int w, int h) {
    for (int j = 0; j < h; ++j)
        for (int i = 0; i < w; ++i, px += 4) {
            const U_COLORREF c = U_RGBA(255 * i / (w - 1), 255 * j / (h - 1), 128, 0);
            std::memcpy(px, &c, 4);
        }
}

U_FONT* font(int height, int angle, int weight, const char* face) {
    return U_FONT_set(int16_t(height), 0, int16_t(angle), int16_t(angle), int16_t(weight), 0, 0, 0,
                      U_ANSI_CHARSET, U_OUT_DEFAULT_PRECIS, U_CLIP_DEFAULT_PRECIS, U_DEFAULT_QUALITY,
                      U_DEFAULT_PITCH, const_cast<char*>(face));
}

void text(int x, int y, uint32_t font, const char* s) {
    ADD(wselectobject_set(font, wht));
    const int n = int(std::strlen(s));
    int16_t* dx = dx16_set(-40, U_FW_NORMAL, n);
    ADD(U_WMREXTTEXTOUT_set(point16_set(x, y), n, U_ETO_NONE, s, dx, U_RCL16_DEF));
    std::free(dx);
}

void writeWmf(const std::string& path) {
    if (wmf_start(path.c_str(), 1000000, 250000, &wt) || wmf_htable_create(128, 128, &wht)) std::exit(1);
    U_PAIRF* size = U_PAIRF_set(6.0f, 4.0f); // inches
    wmf_header_append(reinterpret_cast<U_METARECORD*>(U_WMRHEADER_set(size, 1200)), wt, 1);
    std::free(size);
    ADD(U_WMRSETWINDOWEXT_set(point16_set(7200, 4800)));
    ADD(U_WMRSETWINDOWORG_set(point16_set(0, 0)));
    ADD(U_WMRSETMAPMODE_set(U_MM_ANISOTROPIC));
    ADD(U_WMRSETBKMODE_set(U_TRANSPARENT));
    ADD(U_WMRSETPOLYFILLMODE_set(U_WINDING));
    ADD(U_WMRSETROP2_set(U_R2_COPYPEN));
    ADD(wlinecap_set(2));
    ADD(wlinejoin_set(0));
    ADD(wmiterlimit_set(5));

    uint32_t yellow, blue, gray, black, red10, big, small, h;
    ADD(wcreatebrushindirect_set(&yellow, wht, U_WLOGBRUSH_set(U_BS_SOLID, colorref_set(255, 255, 173), 0)));
    ADD(wcreatebrushindirect_set(&blue, wht, U_WLOGBRUSH_set(U_BS_SOLID, colorref_set(40, 80, 200), 0)));
    ADD(wcreatebrushindirect_set(&gray, wht, U_WLOGBRUSH_set(U_BS_SOLID, colorref_set(128, 128, 128), 0)));
    ADD(wcreatepenindirect_set(&black, wht, U_PEN_set(U_PS_SOLID, 1, colorref_set(0, 0, 0))));
    ADD(wcreatepenindirect_set(
        &red10, wht,
        U_PEN_set(U_PS_SOLID | U_PS_ENDCAP_SQUARE | U_PS_JOIN_MITER, 10, colorref_set(255, 0, 0))));
    U_FONT* f = font(-300, 0, U_FW_BOLD, "Arial");
    ADD(wcreatefontindirect_set(&big, wht, f));
    std::free(f);
    f = font(-40, 0, U_FW_NORMAL, "Courier New");
    ADD(wcreatefontindirect_set(&small, wht, f));
    std::free(f);

    // The page and its title.
    ADD(wselectobject_set(black, wht));
    ADD(wselectobject_set(yellow, wht));
    ADD(U_WMRRECTANGLE_set(U_RECT16{0, 0, 7200, 4800}));
    ADD(U_WMRSETTEXTALIGN_set(U_TA_DEFAULT));
    ADD(U_WMRSETTEXTCOLOR_set(colorref_set(0, 0, 128)));
    text(200, 100, big, "Silta");
    ADD(U_WMRTEXTOUT_set(point16_set(200, 450), const_cast<char*>("TEXTOUT")));

    // Shapes, a path, polygons.
    ADD(wselectobject_set(blue, wht));
    ADD(wselectobject_set(red10, wht));
    ADD(U_WMRELLIPSE_set(U_RECT16{100, 900, 400, 1200}));
    ADD(U_WMRROUNDRECT_set(40, 40, U_RECT16{500, 900, 800, 1200}));
    ADD(U_WMRARC_set(point16_set(1050, 900), point16_set(900, 1200), U_RECT16{900, 900, 1200, 1200}));
    ADD(U_WMRCHORD_set(point16_set(1300, 900), point16_set(1450, 1200), U_RECT16{1300, 900, 1600, 1200}));
    ADD(U_WMRPIE_set(point16_set(1850, 1200), point16_set(1700, 900), U_RECT16{1700, 900, 2000, 1200}));
    ADD(U_WMRPATBLT_set(point16_set(2100, 900), point16_set(300, 300), U_PATCOPY));
    ADD(wbegin_path_set());
    ADD(U_WMRMOVETO_set(point16_set(2500, 900)));
    ADD(U_WMRLINETO_set(point16_set(2800, 1100)));
    ADD(U_WMRLINETO_set(point16_set(2500, 1200)));
    ADD(wend_path_set());
    U_POINT16 star[5] = {{3000, 1200}, {3150, 900}, {3300, 1200}, {2950, 1000}, {3350, 1000}};
    ADD(U_WMRPOLYGON_set(5, star));
    for (U_POINT16& p : star)
        p.x += 400;
    ADD(U_WMRPOLYLINE_set(5, star));
    const uint16_t counts[2] = {3, 3};
    const U_POINT16 two[6] = {{4200, 900}, {4400, 1200}, {4000, 1200},
                              {4500, 900}, {4700, 1200}, {4300, 1200}};
    ADD(U_WMRPOLYPOLYGON_set(2, counts, two));

    // Hatched brushes and dashed pens.
    ADD(wselectobject_set(black, wht));
    for (int i = 0; i <= U_HS_DIAGCROSS; ++i) {
        ADD(wcreatebrushindirect_set(&h, wht, U_WLOGBRUSH_set(U_BS_HATCHED, colorref_set(63, 127, 255), i)));
        ADD(wselectobject_set(h, wht));
        ADD(U_WMRRECTANGLE_set(U_RECT16{int16_t(100 + i * 330), 1400, int16_t(400 + i * 330), 1700}));
        ADD(wdeleteobject_set(&h, wht));
    }
    for (int i = 0; i <= U_PS_DASHDOTDOT; ++i) {
        ADD(wcreatepenindirect_set(&h, wht, U_PEN_set(i, 1, colorref_set(255, 0, 255))));
        ADD(wselectobject_set(h, wht));
        ADD(U_WMRMOVETO_set(point16_set(2200 + i * 100, 1400)));
        ADD(U_WMRLINETO_set(point16_set(2200 + i * 100, 1700)));
        ADD(wselectobject_set(black, wht));
        ADD(wdeleteobject_set(&h, wht));
    }

    // Clipping to a rectangle and around one.
    ADD(U_WMRSAVEDC_set());
    ADD(U_WMRINTERSECTCLIPRECT_set(U_RECT16{3000, 1400, 3300, 1700}));
    ADD(wselectobject_set(gray, wht));
    ADD(U_WMRELLIPSE_set(U_RECT16{2900, 1300, 3400, 1800}));
    ADD(U_WMRRESTOREDC_set(-1));
    ADD(U_WMRSAVEDC_set());
    ADD(U_WMREXCLUDECLIPRECT_set(U_RECT16{3600, 1400, 3800, 1700}));
    ADD(U_WMRELLIPSE_set(U_RECT16{3500, 1300, 4000, 1800}));
    ADD(U_WMRRESTOREDC_set(-1));

    // Bitmaps: a 10 x 10 gradient in 24 and 8 bits, through every bitmap record.
    char rgba[10 * 10 * 4];
    gradient(rgba, 10, 10);
    char* px = nullptr;
    uint32_t cbPx = 0;
    PU_RGBQUAD ct = nullptr;
    int numCt = 0;
    RGBA_to_DIB(&px, &cbPx, &ct, &numCt, rgba, 10, 10, 40, U_BCBM_COLOR24, U_CT_NO, U_ROW_ORDER_INVERT);
    PU_BITMAPINFO bmi = bitmapinfo_set(
        bitmapinfoheader_set(10, 10, 1, U_BCBM_COLOR24, U_BI_RGB, 0, 47244, 47244, numCt, 0), nullptr);
    ADD(U_WMRSETSTRETCHBLTMODE_set(U_STRETCH_DELETESCANS));
    ADD(U_WMRSTRETCHDIB_set(point16_set(100, 2000), point16_set(300, 300), point16_set(0, 0),
                            point16_set(10, 10), U_DIB_RGB_COLORS, U_SRCCOPY, bmi, cbPx, px));
    ADD(U_WMRDIBBITBLT_set(point16_set(500, 2000), point16_set(10, 10), point16_set(0, 0), U_SRCCOPY, bmi,
                           cbPx, px));
    ADD(U_WMRDIBSTRETCHBLT_set(point16_set(700, 2000), point16_set(300, 300), point16_set(0, 0),
                               point16_set(10, 10), U_SRCCOPY, bmi, cbPx, px));
    std::free(bmi);
    std::free(px);
    px = nullptr;
    RGBA_to_DIB(&px, &cbPx, &ct, &numCt, rgba, 10, 10, 40, U_BCBM_COLOR8, U_CT_BGRA, U_ROW_ORDER_SAME);
    bmi = bitmapinfo_set(bitmapinfoheader_set(10, 10, 1, U_BCBM_COLOR8, U_BI_RGB, 0, 47244, 47244, numCt, 0),
                         ct);
    ADD(U_WMRSTRETCHDIB_set(point16_set(1100, 2000), point16_set(300, 300), point16_set(0, 0),
                            point16_set(10, 10), U_DIB_RGB_COLORS, U_SRCCOPY, bmi, cbPx, px));
    // The same pixels as an old device-dependent bitmap, and a transfer with no bitmap at all.
    U_BITMAP16* bm16 = U_BITMAP16_set(8, 10, 10, 4, 8, px);
    ADD(U_WMRBITBLT_set(point16_set(1500, 2000), point16_set(10, 10), point16_set(0, 0), U_SRCCOPY, bm16));
    ADD(U_WMRSTRETCHBLT_set(point16_set(1700, 2000), point16_set(300, 300), point16_set(0, 0),
                            point16_set(10, 10), U_SRCCOPY, bm16));
    ADD(U_WMRBITBLT_set(point16_set(2100, 2000), point16_set(300, 300), point16_set(0, 0), U_DSTINVERT,
                        nullptr));
    // Pattern brushes from a DIB, from a device-dependent bitmap, and the old pattern brush.
    ADD(wcreatedibpatternbrush_srcdib_set(&h, wht, U_DIB_RGB_COLORS, bmi, cbPx, px));
    ADD(wselectobject_set(h, wht));
    ADD(U_WMRRECTANGLE_set(U_RECT16{2500, 2000, 2800, 2300}));
    ADD(wdeleteobject_set(&h, wht));
    ADD(wcreatedibpatternbrush_srcbm16_set(&h, wht, U_DIB_RGB_COLORS, bm16));
    ADD(wselectobject_set(h, wht));
    ADD(U_WMRRECTANGLE_set(U_RECT16{2900, 2000, 3200, 2300}));
    ADD(wdeleteobject_set(&h, wht));
    ADD(wcreatepatternbrush_set(&h, wht, bm16, px));
    ADD(wselectobject_set(h, wht));
    ADD(U_WMRRECTANGLE_set(U_RECT16{3300, 2000, 3600, 2300}));
    ADD(wdeleteobject_set(&h, wht));
    std::free(bm16);
    std::free(bmi);
    std::free(px);
    std::free(ct);

    // Compressed images: a PNG and a JPEG behind a DIB header.
    const QByteArray png = encoded("PNG", Qt::red, Qt::blue);
    const QByteArray jpeg = encoded("JPEG", Qt::green, Qt::yellow);
    int y = 2000;
    for (const auto& [bytes, compression] : {std::pair{png, U_BI_PNG}, std::pair{jpeg, U_BI_JPEG}}) {
        bmi = bitmapinfo_set(bitmapinfoheader_set(10, -10, 1, U_BCBM_EXPLICIT, compression,
                                                  uint32_t(bytes.size()), 0, 0, 0, 0),
                             nullptr);
        ADD(U_WMRSTRETCHDIB_set(point16_set(3700, int16_t(y)), point16_set(200, 200), point16_set(0, 0),
                                point16_set(10, 10), U_DIB_RGB_COLORS, U_SRCCOPY, bmi, uint32_t(bytes.size()),
                                const_cast<char*>(bytes.constData())));
        std::free(bmi);
        y += 250;
    }

    // Flood fills and a pixel.
    ADD(wselectobject_set(gray, wht));
    ADD(U_WMRFLOODFILL_set(U_FLOODFILLBORDER, colorref_set(0, 0, 0), point16_set(150, 950)));
    ADD(U_WMREXTFLOODFILL_set(U_FLOODFILLSURFACE, colorref_set(40, 80, 200), point16_set(550, 950)));
    ADD(U_WMRSETPIXEL_set(colorref_set(0, 1, 2), point16_set(3800, 2100)));

    // A region as the library's own test drawing makes it: the library writes the region's header
    // one word shorter than the format has it, and the scan of fifty line pieces without its
    // closing count.
    U_POINT16 pieces[50];
    for (int i = 0; i < 50; ++i)
        pieces[i] = point16_set(4000 - i * 2, 4200 + i * 2);
    U_SCAN* scan = U_SCAN_set(50, 2000, 2099, reinterpret_cast<uint16_t*>(pieces));
    U_REGION* region = U_REGION_set(U_SIZE_REGION + 50 * 2 * 2, 1, 10000, U_RECT16{3900, 2000, 4300, 2300},
                                    reinterpret_cast<uint16_t*>(scan));
    uint32_t reg;
    ADD(wcreateregion_set(&reg, wht, region));
    ADD(U_WMRFILLREGION_set(uint16_t(reg), uint16_t(gray)));
    std::free(scan);
    std::free(region);

    // Turned text, raster operations, opaque text.
    ADD(U_WMRSETTEXTALIGN_set(U_TA_BASELINE));
    for (int angle = 0; angle < 3600; angle += 900) {
        f = font(-60, angle, U_FW_NORMAL, "Times New Roman");
        ADD(wcreatefontindirect_set(&h, wht, f));
        std::free(f);
        text(5000, 3000, h, "kulma");
        ADD(wdeleteobject_set(&h, wht));
    }
    for (int i = 1; i <= 16; ++i) {
        ADD(U_WMRSETROP2_set(i));
        ADD(U_WMRRECTANGLE_set(U_RECT16{int16_t(100 + i * 100), 3500, int16_t(190 + i * 100), 4000}));
    }
    ADD(U_WMRSETROP2_set(U_R2_COPYPEN));
    ADD(U_WMRSETBKCOLOR_set(colorref_set(0, 255, 0)));
    ADD(U_WMRSETBKMODE_set(U_OPAQUE));
    text(3000, 3600, small, "opaque text");
    ADD(U_WMREOF_set());
    wmf_finish(wt);
    wmf_free(&wt);
    wmf_htable_free(&wht);
}

EMFTRACK* et = nullptr;
EMFHANDLES* eht = nullptr;

#define ADD_EMF(r) emf_append(reinterpret_cast<U_ENHMETARECORD*>(made((r), __LINE__)), et, 1)

void writeEmf(const std::string& path) {
    if (emf_start(path.c_str(), 1000000, 250000, &et) || htable_create(128, 128, &eht)) std::exit(1);
    U_RECTL bounds, frame;
    drawing_size(297, 210, 1200.0f / 25.4f, &bounds, &frame);
    uint16_t* description = U_Utf8ToUtf16le("TAMRIK test\0frame\0", 18, nullptr);
    ADD_EMF(
        U_EMRHEADER_set(bounds, frame, nullptr, 18, description, U_SIZEL{14031, 9921}, U_SIZEL{297, 210}, 0));
    std::free(description);
    ADD_EMF(U_EMRSETMAPMODE_set(U_MM_TEXT));
    uint32_t pen, brush, fontHandle;
    ADD_EMF(createpen_set(&pen, eht, logpen_set(U_PS_SOLID, U_POINT{40, 40}, U_RGB(200, 0, 0))));
    ADD_EMF(createbrushindirect_set(&brush, eht, logbrush_set(U_BS_SOLID, U_RGB(60, 120, 220), 0)));
    ADD_EMF(selectobject_set(pen, eht));
    ADD_EMF(selectobject_set(brush, eht));
    ADD_EMF(U_EMRRECTANGLE_set(U_RECTL{500, 500, 13500, 9400}));
    ADD_EMF(U_EMRSETTEXTCOLOR_set(U_RGB(0, 0, 0)));
    uint16_t* face = U_Utf8ToUtf16le("Arial", 0, nullptr);
    U_LOGFONT lf = logfont_set(-600, 0, 0, 0, U_FW_BOLD, 0, 0, 0, U_ANSI_CHARSET, U_OUT_DEFAULT_PRECIS,
                               U_CLIP_DEFAULT_PRECIS, U_DEFAULT_QUALITY, U_DEFAULT_PITCH, face);
    std::free(face);
    ADD_EMF(extcreatefontindirectw_set(&fontHandle, eht, reinterpret_cast<char*>(&lf), nullptr));
    ADD_EMF(selectobject_set(fontHandle, eht));
    uint16_t* string = U_Utf8ToUtf16le("Silta 2006", 0, nullptr);
    uint32_t* dx = dx_set(-600, U_FW_BOLD, 10);
    char* emrtext = emrtext_set(U_POINTL{7000, 4000}, 10, 2, string, U_ETO_NONE, U_RCL_DEF, dx);
    ADD_EMF(
        U_EMREXTTEXTOUTW_set(U_RCL_DEF, U_GM_COMPATIBLE, 1.0, 1.0, reinterpret_cast<PU_EMRTEXT>(emrtext)));
    std::free(emrtext);
    std::free(dx);
    std::free(string);
    ADD_EMF(U_EMREOF_set(0, nullptr, et));
    emf_finish(et, eht);
    emf_free(&et);
    htable_free(&eht);
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 2) {
        std::fprintf(stderr, "usage: tamrik_make_test_metafiles OUTDIR\n");
        return 1;
    }
    const std::string dir = argv[1];
    writeWmf(dir + "/uemf-drawing.wmf");
    writeEmf(dir + "/printer-frame.emf");
    return 0;
}
