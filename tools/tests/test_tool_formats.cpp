// The tool's formats, repacking, routing and call adapters.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <random>
#include <set>

#include "image.h"
#include "io.h"
#include "ops.h"
#include "typed.h"

using namespace kt;

namespace {

Image randomImage(const Format& f, int w, int h, unsigned seed) {
    Image img(f, w, h);
    std::mt19937 rng(seed);
    for (int p = 0; p < f.planeCount; ++p)
        for (auto& b : img.plane[p]) b = static_cast<uint8_t>(rng());
    return img;
}

// One value a channel (canonical order, then alpha), in any layout.
Image solid(const Format& f, int w, int h, std::vector<uint8_t> values) {
    Image img(f, w, h);
    const char* letters = familyLetters(f.family);
    for (int p = 0; p < f.planeCount; ++p) {
        const char* l = f.planes[p].letters;
        const std::size_t unit = std::strlen(l);
        for (std::size_t i = 0; i < img.plane[p].size(); ++i) {
            const std::size_t c = static_cast<std::size_t>(std::strchr(letters, l[i % unit]) - letters);
            img.plane[p][i] = c < values.size() ? values[c] : 255;
        }
    }
    return img;
}

// Every sample of one channel (canonical number), wherever the layout keeps it.
std::vector<uint8_t> samplesOf(const Image& img, int c) {
    std::vector<uint8_t> v;
    const char letter = familyLetters(img.fmt->family)[c];
    for (int p = 0; p < img.fmt->planeCount; ++p) {
        const char* l = img.fmt->planes[p].letters;
        const std::size_t unit = std::strlen(l);
        for (std::size_t i = 0; i < img.plane[p].size(); ++i)
            if (l[i % unit] == letter) v.push_back(img.plane[p][i]);
    }
    return v;
}

}  // namespace

TEST(ToolFormats, NamesAreUniqueAndLayoutsConsistent) {
    std::set<std::string> names;
    for (const Format& f : formats()) {
        EXPECT_TRUE(names.insert(f.name).second) << f.name;
        EXPECT_EQ(findFormat(f.name), &f);
        // every family channel but alpha appears in some plane exactly once
        const char* letters = familyLetters(f.family);
        const int colour = f.family == Family::Gray ? 1 : 3;
        for (int c = 0; c < colour; ++c) {
            int seen = 0;
            for (int p = 0; p < f.planeCount; ++p)
                for (const char* l = f.planes[p].letters; *l; ++l) seen += *l == letters[c];
            if (f.fullResolution()) EXPECT_EQ(seen, 1) << f.name << " channel " << letters[c];
            else EXPECT_GE(seen, 1) << f.name;
        }
    }
    EXPECT_EQ(findFormat("yuv444"), nullptr);
    EXPECT_THROW(formatOrThrow("nosuch"), UsageError);
}

TEST(ToolFormats, FrameGeometry) {
    EXPECT_EQ(frameBytes(formatOrThrow("rgb24"), 5, 3), 45u);
    EXPECT_EQ(frameBytes(formatOrThrow("yuv444p"), 5, 3), 45u);
    EXPECT_EQ(frameBytes(formatOrThrow("yuva444p"), 5, 3), 60u);
    EXPECT_EQ(frameBytes(formatOrThrow("yuv420p"), 4, 2), 8u + 2u + 2u);
    EXPECT_EQ(frameBytes(formatOrThrow("nv12"), 6, 4), 24u + 12u);
    EXPECT_EQ(frameBytes(formatOrThrow("yuyv422"), 4, 3), 24u);
    EXPECT_EQ(frameBytes(formatOrThrow("yuv411p"), 8, 1), 8u + 2u + 2u);
    EXPECT_NO_THROW(checkSizeFits(formatOrThrow("rgb24"), 451, 299));
    EXPECT_NO_THROW(checkSizeFits(formatOrThrow("yuv420p"), 6, 4));
    EXPECT_THROW(checkSizeFits(formatOrThrow("yuv420p"), 5, 4), Error);
    EXPECT_THROW(checkSizeFits(formatOrThrow("yuv420p"), 6, 3), Error);
    EXPECT_THROW(checkSizeFits(formatOrThrow("yuyv422"), 3, 3), Error);
    EXPECT_NO_THROW(checkSizeFits(formatOrThrow("yuyv422"), 2, 3));
    EXPECT_THROW(checkSizeFits(formatOrThrow("yuv411p"), 6, 1), Error);
    EXPECT_THROW(checkSizeFits(formatOrThrow("rgb24"), 0, 1), Error);
    EXPECT_THROW(checkSizeFits(formatOrThrow("rgb24"), 1 << 30, 4), Error);
}

// Repacking within a family keeps every sample; alpha a format lacks
// comes back as 255.
TEST(ToolFormats, RepackIsLossless) {
    for (const Format& a : formats()) {
        if (!a.fullResolution()) continue;
        const Image src = randomImage(a, 19, 5, 7);
        for (const Format& b : formats()) {
            if (!canRepack(a, b)) continue;
            const Image there = repack(src, b);
            const Image back = repack(there, a);
            if (b.hasAlpha() || !a.hasAlpha()) {
                for (int p = 0; p < a.planeCount; ++p) EXPECT_EQ(back.plane[p], src.plane[p]) << a.name << " via " << b.name;
            }
            const Channels cs = unpack(src), ct = unpack(there);
            for (int c = 0; c < (a.family == Family::Gray ? 1 : 3); ++c) EXPECT_EQ(cs.c[c], ct.c[c]) << a.name << " to " << b.name;
            if (b.hasAlpha() && !a.hasAlpha()) {
                for (uint8_t v : ct.c.back()) ASSERT_EQ(v, 255) << a.name << " to " << b.name;
            }
        }
    }
}

TEST(ToolFormats, PlanesOfPlanarRgbFollowItsName) {
    const Format& gbrp = formatOrThrow("gbrp");
    Image img = solid(gbrp, 3, 2, {10, 20, 30});  // R, G, B
    EXPECT_EQ(img.plane[0][0], 20);  // G
    EXPECT_EQ(img.plane[1][0], 30);  // B
    EXPECT_EQ(img.plane[2][0], 10);  // R
    EXPECT_EQ(img.channelPlane(0), img.data(2));
    const Image packed = repack(img, formatOrThrow("bgra"));
    EXPECT_EQ(packed.plane[0][0], 30);
    EXPECT_EQ(packed.plane[0][2], 10);
    EXPECT_EQ(packed.plane[0][3], 255);
}

TEST(ToolConversions, EveryEntryNamesAnExportAndKnownFormats) {
    const std::vector<std::string>& names = exportedNames();
    std::set<std::string> seen;
    for (const Conversion& c : conversions()) {
        EXPECT_TRUE(seen.insert(c.name).second) << c.name << " is in the table twice";
        EXPECT_NE(std::find(names.begin(), names.end(), c.name), names.end()) << c.name;
        EXPECT_NE(findFormat(c.from), nullptr) << c.name;
        EXPECT_NE(findFormat(c.to), nullptr) << c.name;
        EXPECT_NE(findModel(c.model), nullptr) << c.name;
        // Operations of one family only change the layout.
        EXPECT_EQ(c.fromFormat().family == c.toFormat().family, chromaOnly(c.model)) << c.name;
    }
    // The export list itself reached the tool whole.
    EXPECT_EQ(names.front(), "kroccGetLibVersion");
    for (std::size_t i = 1; i < names.size(); ++i) EXPECT_LT(names[i - 1], names[i]);
}

TEST(ToolConversions, RouterPrefersTheOperationThatFits) {
    for (const Conversion& c : conversions()) {
        Route r;
        ASSERT_TRUE(findRoute(c.fromFormat(), c.toFormat(), c.model, r)) << c.name;
        // Several operations may serve one pair (with steps and without): the first wins.
        const Conversion* first = &c;
        for (const Conversion& o : conversions())
            if (&o.fromFormat() == &c.fromFormat() && &o.toFormat() == &c.toFormat() && !std::strcmp(o.model, c.model)) {
                first = &o;
                break;
            }
        EXPECT_EQ(r.op, first) << c.name;
        EXPECT_FALSE(r.repackIn);
        EXPECT_FALSE(r.repackOut);
        // without a model the first model that reaches the pair wins
        ASSERT_TRUE(findRoute(c.fromFormat(), c.toFormat(), "", r));
        if (std::strcmp(c.model, models().front().name) == 0) {
            EXPECT_EQ(r.op, first) << c.name;
        }
    }
    Route r;
    ASSERT_TRUE(findRoute(formatOrThrow("bgr24"), formatOrThrow("yuv444p"), "", r));
    EXPECT_STREQ(r.op->name, "kroiRGBToYUV_8u_C3P3R");
    EXPECT_TRUE(r.repackIn);
    EXPECT_FALSE(r.repackOut);
    ASSERT_TRUE(findRoute(formatOrThrow("rgb24"), formatOrThrow("yuva444p"), "", r));
    EXPECT_STREQ(r.op->name, "kroiRGBToYUV_8u_C3P3R");
    ASSERT_TRUE(findRoute(formatOrThrow("yuv444p"), formatOrThrow("bgr24"), "", r));
    EXPECT_STREQ(r.op->name, "kroiYUVToRGB_8u_P3C3R");
    ASSERT_TRUE(findRoute(formatOrThrow("rgb24"), formatOrThrow("bgr24"), "analog", r));
    EXPECT_EQ(r.op, nullptr);
    EXPECT_TRUE(r.repackIn);
    EXPECT_FALSE(findRoute(formatOrThrow("yuv444p"), formatOrThrow("yuv420p"), "", r));
    ASSERT_TRUE(findRoute(formatOrThrow("rgb24"), formatOrThrow("yuv420p"), "bt601", r));
    EXPECT_STREQ(r.op->name, "kroiRGBToYCbCr420_8u_C3P3R");
    ASSERT_TRUE(findRoute(formatOrThrow("yuv420p"), formatOrThrow("nv12"), "bt709", r));  // no model between layouts
    EXPECT_STREQ(r.op->name, "kroiYCbCr420_8u_P3P2R");
    EXPECT_FALSE(findRoute(formatOrThrow("yuv410p"), formatOrThrow("yuv444p"), "", r));
    EXPECT_FALSE(findRoute(formatOrThrow("rgb24"), formatOrThrow("yuv444p"), "nosuch", r));
}

// Each adapter hands the library the right planes in the right order: pure
// red and a saturated red in the model's own coordinates, per model (models
// without a line here are only run).
TEST(ToolConversions, AdaptersPassChannelsInOrder) {
    struct Known {
        const char* model;
        std::vector<uint8_t> rgbIn;
        std::vector<int> modelWant;
        std::vector<uint8_t> modelIn;
        std::vector<int> rgbWant;
    };
    const Known known[] = {
        {"analog", {255, 0, 0}, {76, 90, 255}, {76, 84, 255}, {221, 19, 0}},
        {"bt601", {255, 0, 0}, {82, 90, 240}, {82, 90, 240}, {255, 0, 0}},
        {"layout", {}, {}, {200, 100, 50}, {200, 100, 50}},  // samples kept
        {"interlace", {}, {}, {200, 100, 50}, {200, 100, 50}},
        {"filter", {}, {}, {200, 100, 50}, {200, 100, 50}},
    };
    for (const Conversion& c : conversions()) {
        const Known* k = nullptr;
        for (const Known& kk : known)
            if (std::strcmp(kk.model, c.model) == 0) k = &kk;
        const Format& f = c.fromFormat();
        const bool forward = f.family == Family::Rgb;
        std::vector<uint8_t> in = k ? (forward ? k->rgbIn : k->modelIn) : std::vector<uint8_t>{200, 100, 50};
        if (f.hasAlpha()) in.push_back(77);
        const Image src = solid(f, f.fullResolution() && c.toFormat().fullResolution() ? 37 : 36, std::max(4, c.rowMultiple), in);
        KroStatus st = -1;
        const Image dst = runOp(c, src, &st);
        ASSERT_EQ(st, kroStatusOk) << c.name;
        ASSERT_EQ(dst.fmt, &c.toFormat());
        // The filtered encoder starts each row's chroma nearer 128: run only.
        if (!k || !std::strcmp(c.name, "kroiRGBToCbYCr422_8u_C3C2R")) continue;
        if (dst.fmt->family == Family::Gray) {  // the luma as it was
            for (uint8_t v : samplesOf(dst, 0)) ASSERT_EQ(v, in[0]) << c.name;
            continue;
        }
        const std::vector<int>& want = forward ? k->modelWant : k->rgbWant;
        for (int ch = 0; ch < (dst.fmt->family == Family::Gray ? 1 : 3); ++ch)
            for (uint8_t v : samplesOf(dst, ch)) ASSERT_NEAR(v, want[ch], 1) << c.name << " channel " << ch;
        const Channels out = dst.fmt->fullResolution() ? unpack(dst) : Channels{};
        if (dst.fmt->hasAlpha() && std::strcmp(c.model, "analog") == 0 && f.fullResolution()) {  // 4:2:x decoders write 0
            const int alpha = f.hasAlpha() ? 77 : 255;  // carried over, or opaque
            for (uint8_t v : out.c[3]) ASSERT_EQ(v, alpha) << c.name;
        }
    }
}

// Pictures shown to a person: Y, U, V side by side at their own sizes,
// whatever the layout.
TEST(ToolPictures, ChannelsSideBySideForEveryLayout) {
    const int w = 4, h = 2;
    for (const char* name : {"yuv444p", "yuv24", "vuya", "yuv420p", "nv12", "nv21", "yuyv422", "uyvy422", "yuv411p"}) {
        const Format& f = formatOrThrow(name);
        Image img(f, w, h);
        // Each sample holds its letter's code plus its row, so where it lands tells where it came from.
        for (int p = 0; p < f.planeCount; ++p) {
            const char* l = f.planes[p].letters;
            const int unit = static_cast<int>(std::strlen(l));
            for (int y = 0; y < img.rows[p]; ++y)
                for (int x = 0; x < img.step[p]; ++x) img.plane[p][y * img.step[p] + x] = static_cast<uint8_t>(l[x % unit] + 10 * y);
        }
        const Picture pic = showPicture(img);
        const int cw = w / f.blockWidth(), ch = h / f.blockHeight();
        ASSERT_EQ(pic.channels, 1) << name;
        ASSERT_EQ(pic.width, w + 2 * cw) << name;
        ASSERT_EQ(pic.height, h) << name;
        for (int y = 0; y < h; ++y)
            for (int x = 0; x < pic.width; ++x) {
                const uint8_t got = pic.data[y * pic.width + x];
                if (x < w) EXPECT_EQ(got, 'Y' + 10 * y) << name << " at " << x << "," << y;
                else if (y >= ch) EXPECT_EQ(got, 0) << name << " at " << x << "," << y;
                else EXPECT_EQ(got, (x < w + cw ? 'U' : 'V') + 10 * y) << name << " at " << x << "," << y;
            }
    }
    const Image rgb = solid(formatOrThrow("bgra"), 3, 2, {1, 2, 3, 4});
    const Picture shown = showPicture(rgb);
    EXPECT_EQ(shown.channels, 3);
    EXPECT_EQ(shown.data, std::vector<uint8_t>({1, 2, 3, 1, 2, 3, 1, 2, 3, 1, 2, 3, 1, 2, 3, 1, 2, 3}));
}

// Every exported operation is reached by the demo or by convert: a family
// added to the export list without an entry in either table fails here.
TEST(ToolConversions, EveryExportIsReachedByTheDemoOrConvert) {
    const std::vector<std::string> reach = kt::demoReach();
    for (const std::string& name : kt::exportedNames()) {
        if (name == "kroccGetLibVersion") continue;
        EXPECT_TRUE(std::binary_search(reach.begin(), reach.end(), name)) << name << " is in no table of the tool";
    }
    // And every name in the tables is an export.
    for (const std::string& name : reach)
        EXPECT_NE(std::find(kt::exportedNames().begin(), kt::exportedNames().end(), name), kt::exportedNames().end()) << name;
}
