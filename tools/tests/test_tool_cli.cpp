// The krocc binary as a shell user meets it: demo, convert, list, and the
// one-line errors that leave no output behind.
#include <gtest/gtest.h>

#include <sys/wait.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <random>
#include <sstream>

#include "io.h"
#include "krocc.h"

namespace fs = std::filesystem;

namespace {

struct Outcome {
    int status = -1;
    std::string out, err;
};

std::string slurp(const fs::path& p) {
    std::ifstream f(p, std::ios::binary);
    std::stringstream s;
    s << f.rdbuf();
    return s.str();
}

void spill(const fs::path& p, const std::vector<uint8_t>& bytes) {
    std::ofstream f(p, std::ios::binary);
    f.write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
}

std::vector<uint8_t> bytesOf(const fs::path& p) {
    const std::string s = slurp(p);
    return std::vector<uint8_t>(s.begin(), s.end());
}

// A scratch directory of the test's own; commands run inside it.
class ToolCli : public ::testing::Test {
protected:
    void SetUp() override {
        dir = fs::path(KROCC_TOOL_SCRATCH) / ::testing::UnitTest::GetInstance()->current_test_info()->name();
        fs::remove_all(dir);
        fs::create_directories(dir);
    }

    Outcome run(const std::string& args) { return shell("'" KROCC_TOOL "' " + args); }

    // A shell command line in the scratch directory; $K stands for the tool.
    Outcome shell(std::string line) {
        for (std::size_t at; (at = line.find("$K")) != std::string::npos;) line.replace(at, 2, "'" KROCC_TOOL "'");
        const std::string cmd = "cd '" + dir.string() + "' && { " + line + " ; } >.stdout 2>.stderr";
        const int raw = std::system(cmd.c_str());
        Outcome r;
        r.status = WIFEXITED(raw) ? WEXITSTATUS(raw) : 128;
        r.out = slurp(dir / ".stdout");
        r.err = slurp(dir / ".stderr");
        fs::remove(dir / ".stdout");
        fs::remove(dir / ".stderr");
        return r;
    }

    std::vector<std::string> entries() {
        std::vector<std::string> names;
        for (const auto& e : fs::directory_iterator(dir)) names.push_back(e.path().filename().string());
        std::sort(names.begin(), names.end());
        return names;
    }

    fs::path dir;
};

std::vector<uint8_t> randomBytes(std::size_t n, unsigned seed) {
    std::mt19937 rng(seed);
    std::vector<uint8_t> v(n);
    for (auto& b : v) b = static_cast<uint8_t>(rng());
    return v;
}

}  // namespace

// The demo on a small picture of soft gradients (colours every model holds):
// every exported operation appears in its table, no round trip is over its
// bound, and every picture of the index page is there.
TEST_F(ToolCli, DemoReachesEveryOperationWithinItsBounds) {
    kt::Picture pic;
    pic.width = 48;
    pic.height = 32;
    pic.channels = 3;
    for (int y = 0; y < pic.height; ++y)
        for (int x = 0; x < pic.width; ++x)
            for (int v : {32 + x * 4, 32 + y * 6, 224 - (x + y) * 2}) pic.data.push_back(static_cast<uint8_t>(v));
    kt::writePng((dir / "soft.png").string(), pic);
    const Outcome r = run("demo soft.png --out out/demo");
    ASSERT_EQ(r.status, 0) << r.err;
    EXPECT_EQ(r.err, "");
    const fs::path index = dir / "out/demo/index.html";
    ASSERT_TRUE(fs::exists(index));
    // The last line is the index's path.
    std::string last = r.out.substr(0, r.out.size() - 1);
    last = last.substr(last.find_last_of('\n') + 1);
    EXPECT_EQ(fs::canonical(last), fs::canonical(index));
    const std::string html = slurp(index);
    std::size_t at = 0, pictures = 0;
    while ((at = html.find("src=\"", at)) != std::string::npos) {
        at += 5;
        const std::string name = html.substr(at, html.find('"', at) - at);
        const fs::path p = dir / "out/demo" / name;
        ASSERT_TRUE(fs::exists(p)) << name;
        ++pictures;
    }
    EXPECT_GE(pictures, 600u);
    EXPECT_NO_THROW(kt::readPicture((dir / "out/demo/source.png").string()));
    std::ifstream f(KROCC_EXPORTS_LIST);
    std::string line;
    while (std::getline(f, line)) {
        if (line.empty() || line[0] == '#' || line == "kroccGetLibVersion") continue;
        EXPECT_NE(r.out.find(line + " "), std::string::npos) << line << " is not in the demo's table";
        EXPECT_NE(html.find(line), std::string::npos) << line;
    }
    EXPECT_EQ(r.out.find("over its bound"), std::string::npos) << r.out;
    EXPECT_EQ(r.out.find("not run"), std::string::npos) << r.out;
    EXPECT_EQ(r.out.find("not shown"), std::string::npos) << r.out;
    EXPECT_NE(html.find("grey"), std::string::npos);  // says how YUV is shown
    for (const auto& e : fs::directory_iterator(dir / "out/demo"))
        EXPECT_EQ(e.path().filename().string().find(".krocc-"), std::string::npos) << e.path();
}

TEST_F(ToolCli, DemoTakesAPictureOfItsOwn) {
    kt::Picture pic;
    pic.width = 17;
    pic.height = 3;
    pic.channels = 3;
    pic.data = randomBytes(17 * 3 * 3, 5);
    kt::writePnm((dir / "small.ppm").string(), pic);
    const Outcome r = run("demo small.ppm -o d");
    ASSERT_EQ(r.status, 0) << r.err;
    EXPECT_TRUE(fs::exists(dir / "d/index.html"));
    EXPECT_EQ(kt::readPicture((dir / "d/source.png").string()).data, pic.data);
}

// rgb24 -> yuv444p -> rgb24 through raw files gives what the library gives
// when called directly.
TEST_F(ToolCli, ConvertRawRoundTrip) {
    const int w = 37, h = 11;
    const std::vector<uint8_t> rgb = randomBytes(static_cast<std::size_t>(w) * h * 3, 11);
    spill(dir / "in.rgb", rgb);
    Outcome r = run("convert in.rgb mid.yuv --from rgb24 --to yuv444p --size 37x11 --verbose");
    ASSERT_EQ(r.status, 0) << r.err;
    EXPECT_NE(r.err.find("kroiRGBToYUV_8u_C3P3R"), std::string::npos) << r.err;
    r = run("convert mid.yuv out.rgb -f yuv444p -t rgb24 -s 37x11 -v");
    ASSERT_EQ(r.status, 0) << r.err;
    EXPECT_NE(r.err.find("kroiYUVToRGB_8u_P3C3R"), std::string::npos) << r.err;

    std::vector<uint8_t> planes(static_cast<std::size_t>(w) * h * 3), back(planes.size());
    Kro8u* p[3] = {planes.data(), planes.data() + w * h, planes.data() + 2 * w * h};
    ASSERT_EQ(kroiRGBToYUV_8u_C3P3R(rgb.data(), w * 3, p, w, kroiSize{w, h}), kroStatusOk);
    const Kro8u* cp[3] = {p[0], p[1], p[2]};
    ASSERT_EQ(kroiYUVToRGB_8u_P3C3R(cp, w, back.data(), w * 3, kroiSize{w, h}), kroStatusOk);
    EXPECT_EQ(bytesOf(dir / "mid.yuv"), planes);
    EXPECT_EQ(bytesOf(dir / "out.rgb"), back);
}

// Several frames in one raw file are converted one after another.
TEST_F(ToolCli, ConvertRawFrames) {
    const int w = 9, h = 4;
    const std::vector<uint8_t> rgb = randomBytes(static_cast<std::size_t>(w) * h * 3 * 3, 12);
    spill(dir / "in.rgb", rgb);
    Outcome r = run("convert in.rgb mid.yuv --from rgb24 --to yuv444p --size 9x4");
    ASSERT_EQ(r.status, 0) << r.err;
    std::vector<uint8_t> want;
    for (int f = 0; f < 3; ++f) {
        std::vector<uint8_t> planes(static_cast<std::size_t>(w) * h * 3);
        Kro8u* p[3] = {planes.data(), planes.data() + w * h, planes.data() + 2 * w * h};
        ASSERT_EQ(kroiRGBToYUV_8u_C3P3R(rgb.data() + f * w * h * 3, w * 3, p, w, kroiSize{w, h}), kroStatusOk);
        want.insert(want.end(), planes.begin(), planes.end());
    }
    EXPECT_EQ(bytesOf(dir / "mid.yuv"), want);
    r = run("convert mid.yuv one.png --from yuv444p --size 9x4");
    EXPECT_NE(r.status, 0);
    EXPECT_FALSE(fs::exists(dir / "one.png"));
}

// Raw frames stream through pipes; a short last frame fails and leaves no
// output file.
TEST_F(ToolCli, ConvertStreamsThroughPipes) {
    const std::vector<uint8_t> rgb = randomBytes(6 * 5 * 3 * 4, 16);
    spill(dir / "in.rgb", rgb);
    Outcome r = shell("cat in.rgb | $K convert - - -f rgb24 -t yuv444p -s 6x5 | $K convert - back.rgb -f yuv444p -t rgb24 -s 6x5");
    ASSERT_EQ(r.status, 0) << r.err;
    ASSERT_EQ(run("convert in.rgb direct.yuv -f rgb24 -t yuv444p -s 6x5").status, 0);
    ASSERT_EQ(run("convert direct.yuv direct.rgb -f yuv444p -t rgb24 -s 6x5").status, 0);
    EXPECT_EQ(bytesOf(dir / "back.rgb"), bytesOf(dir / "direct.rgb"));
    EXPECT_EQ(bytesOf(dir / "back.rgb").size(), rgb.size());

    r = shell("head -c 90 in.rgb | $K convert - one.png -f rgb24 -s 6x5");  // one frame from a pipe
    ASSERT_EQ(r.status, 0) << r.err;
    EXPECT_EQ(kt::readPicture((dir / "one.png").string()).data, std::vector<uint8_t>(rgb.begin(), rgb.begin() + 90));
    r = shell("cat in.rgb | $K convert - two.png -f rgb24 -s 6x5");
    EXPECT_NE(r.status, 0);
    EXPECT_NE(r.err.find("more than one frame"), std::string::npos) << r.err;
    EXPECT_FALSE(fs::exists(dir / "two.png"));

    r = shell("head -c 100 in.rgb | $K convert - short.yuv -f rgb24 -t yuv444p -s 6x5");
    EXPECT_NE(r.status, 0);
    EXPECT_NE(r.err.find("holds 100 bytes"), std::string::npos) << r.err;
    EXPECT_FALSE(fs::exists(dir / "short.yuv"));
    for (const auto& e : fs::directory_iterator(dir))
        EXPECT_EQ(e.path().filename().string().find(".krocc-"), std::string::npos) << e.path();
}

// Pictures: PNG <-> PPM <-> raw without a library operation, and a YUV
// picture read back by naming its channels.
TEST_F(ToolCli, ConvertPictures) {
    kt::Picture pic;
    pic.width = 21;
    pic.height = 5;
    pic.channels = 3;
    pic.data = randomBytes(21 * 5 * 3, 13);
    kt::writePng((dir / "a.png").string(), pic);
    ASSERT_EQ(run("convert a.png b.ppm").status, 0);
    ASSERT_EQ(run("convert b.ppm c.bgr --to bgr24").status, 0);
    ASSERT_EQ(run("convert c.bgr d.png --from bgr24 --to rgb24 --size 21x5").status, 0);
    EXPECT_EQ(kt::readPicture((dir / "d.png").string()).data, pic.data);
    const std::vector<uint8_t> bgr = bytesOf(dir / "c.bgr");
    ASSERT_EQ(bgr.size(), pic.data.size());
    EXPECT_EQ(bgr[0], pic.data[2]);
    EXPECT_EQ(bgr[2], pic.data[0]);

    ASSERT_EQ(run("convert a.png y.png --to yuv24").status, 0);  // Y, U, V in a PNG's R, G, B
    ASSERT_EQ(run("convert y.png e.png --from yuv24 --to rgb24").status, 0);
    std::vector<uint8_t> yuv(pic.data.size()), back(pic.data.size());
    ASSERT_EQ(kroiRGBToYUV_8u_C3R(pic.data.data(), 63, yuv.data(), 63, kroiSize{21, 5}), kroStatusOk);
    ASSERT_EQ(kroiYUVToRGB_8u_C3R(yuv.data(), 63, back.data(), 63, kroiSize{21, 5}), kroStatusOk);
    EXPECT_EQ(kt::readPicture((dir / "y.png").string()).data, yuv);
    EXPECT_EQ(kt::readPicture((dir / "e.png").string()).data, back);
}

// A picture of 4 x 4 blocks of one colour each: every subsampling keeps it,
// so a round trip through any layout stays within the model's rounding.
kt::Picture blockPicture(int w, int h) {
    kt::Picture pic;
    pic.width = w;
    pic.height = h;
    pic.channels = 3;
    for (int y = 0; y < h; ++y)
        for (int x = 0; x < w; ++x)
            for (int v : {40 + (x / 4) * 40 % 200, 200 - (y / 4) * 50 % 160, 60 + ((x / 4 + y / 4) % 3) * 50})
                pic.data.push_back(static_cast<uint8_t>(v));
    return pic;
}

int largestDifference(const std::vector<uint8_t>& a, const std::vector<uint8_t>& b) {
    int d = a.size() == b.size() ? 0 : 256;
    for (std::size_t i = 0; i < a.size() && i < b.size(); ++i) d = std::max(d, std::abs(a[i] - b[i]));
    return d;
}

// rgb24 through each raw layout and back, by each model that has both ways.
TEST_F(ToolCli, ConvertRoundTripsThroughEveryLayout) {
    const kt::Picture pic = blockPicture(16, 8);
    kt::writePng((dir / "b.png").string(), pic);
    const struct {
        const char* format;
        const char* model;
        int bound;
    } trips[] = {
        {"yuv444p", "bt601", 3}, {"yuv444p", "analog", 4}, {"yuv24", "photoycc", 12}, {"yuv420p", "bt601", 3},
        {"yuv420p", "analog", 4}, {"yuv420p", "bt709", 3},  {"yuv420p", "bt709full", 2}, {"nv12", "bt601", 3},
        {"yvu420p", "bt601", 3},  {"yuyv422", "bt601", 3},  {"yuyv422", "analog", 4},   {"uyvy422", "bt601", 3},
        {"uyvy422", "bt709full", 2}, {"yvyu422", "bt601", 3}, {"yuv422p", "bt601", 3}, {"yuv422p", "analog", 4},
        {"yuv411p", "bt601", 3},
    };
    for (const auto& t : trips) {
        const std::string f = t.format, m = t.model;
        ASSERT_EQ(run("convert b.png mid.raw --to " + f + " --matrix " + m).status, 0) << f << " " << m;
        EXPECT_EQ(fs::file_size(dir / "mid.raw"), kt::frameBytes(kt::formatOrThrow(f), 16, 8)) << f;
        const Outcome r = run("convert mid.raw back.png --from " + f + " --size 16x8 --to rgb24 --matrix " + m);
        ASSERT_EQ(r.status, 0) << f << " " << m << ": " << r.err;
        EXPECT_LE(largestDifference(kt::readPicture((dir / "back.png").string()).data, pic.data), t.bound) << f << " " << m;
    }
}

// Raw files written by convert have FFmpeg's byte layout for their names:
// repacking a known nv12 frame, the bytes are computed here from its planes.
TEST_F(ToolCli, RawFilesHaveTheLayoutOfTheirNames) {
    const int w = 8, h = 4;
    const std::vector<uint8_t> Y = randomBytes(w * h, 21), UV = randomBytes(w * h / 2, 22);
    auto y = [&](int r, int c) { return Y[static_cast<std::size_t>(r * w + c)]; };
    auto u = [&](int r, int c) { return UV[static_cast<std::size_t>((r / 2) * w + (c / 2) * 2)]; };      // 4:2:0 chroma of pixel (c, r)
    auto v = [&](int r, int c) { return UV[static_cast<std::size_t>((r / 2) * w + (c / 2) * 2 + 1)]; };
    std::vector<uint8_t> nv12 = Y;
    nv12.insert(nv12.end(), UV.begin(), UV.end());
    spill(dir / "in.nv12", nv12);

    std::vector<uint8_t> yuv420p = Y, yuv422p = Y, yuyv, uyvy, yvyu, nv21 = Y;
    for (int plane : {0, 1})
        for (int r = 0; r < h; r += 2)
            for (int c = 0; c < w; c += 2) yuv420p.push_back(plane ? v(r, c) : u(r, c));
    for (int plane : {0, 1})
        for (int r = 0; r < h; ++r)
            for (int c = 0; c < w; c += 2) yuv422p.push_back(plane ? v(r, c) : u(r, c));
    for (int r = 0; r < h; ++r)
        for (int c = 0; c < w; c += 2) {
            for (uint8_t b : {y(r, c), u(r, c), y(r, c + 1), v(r, c)}) yuyv.push_back(b);
            for (uint8_t b : {u(r, c), y(r, c), v(r, c), y(r, c + 1)}) uyvy.push_back(b);
            for (uint8_t b : {y(r, c), v(r, c), y(r, c + 1), u(r, c)}) yvyu.push_back(b);
        }
    for (int r = 0; r < h; r += 2)
        for (int c = 0; c < w; c += 2) {
            nv21.push_back(v(r, c));
            nv21.push_back(u(r, c));
        }
    const struct {
        const char *in, *from, *to;
        const std::vector<uint8_t>* want;
    } cases[] = {
        {"in.nv12", "nv12", "yuv420p", &yuv420p}, {"in.nv12", "nv12", "yuv422p", &yuv422p},
        {"in.nv12", "nv12", "yuyv422", &yuyv},    {"in.nv12", "nv12", "uyvy422", &uyvy},
        {"out.yuyv422", "yuyv422", "yvyu422", &yvyu}, {"out.yuyv422", "yuyv422", "nv21", &nv21},
        {"out.yuv420p", "yuv420p", "nv12", &nv12},
    };
    const bool ffmpeg = std::system("command -v ffmpeg >/dev/null 2>&1") == 0;
    for (const auto& c : cases) {
        const std::string out = std::string("out.") + c.to;
        const Outcome r = run(std::string("convert ") + c.in + " " + out + " --from " + c.from + " --to " + c.to + " --size 8x4");
        ASSERT_EQ(r.status, 0) << c.to << ": " << r.err;
        EXPECT_EQ(bytesOf(dir / out), *c.want) << c.from << " -> " << c.to;
        if (ffmpeg) {  // FFmpeg reads the file under its name as the planes it came from
            const std::string planar = std::string(c.to) == "nv12" || std::string(c.to) == "nv21" || std::string(c.to) == "yuv420p"
                                           ? "yuv420p" : "yuv422p";
            ASSERT_EQ(shell("ffmpeg -v error -f rawvideo -pix_fmt " + std::string(c.to) + " -s 8x4 -i " + out +
                            " -f rawvideo -pix_fmt " + planar + " -y ff.raw").status, 0);
            EXPECT_EQ(bytesOf(dir / "ff.raw"), planar == "yuv420p" ? yuv420p : yuv422p) << c.to;
        }
    }
}

TEST_F(ToolCli, ListShowsEveryExportAndItsFormats) {
    const Outcome r = run("list");
    ASSERT_EQ(r.status, 0) << r.err;
    std::ifstream f(KROCC_EXPORTS_LIST);
    std::string line;
    int names = 0;
    while (std::getline(f, line)) {
        if (line.empty() || line[0] == '#') continue;
        EXPECT_NE(r.out.find(line), std::string::npos) << line;
        ++names;
    }
    EXPECT_GT(names, 1);
    EXPECT_NE(r.out.find("kroiRGBToYUV_8u_C3P3R        rgb24 -> yuv444p"), std::string::npos) << r.out;
    EXPECT_NE(r.out.find("bgr24 -> yuv444p"), std::string::npos);
    EXPECT_NE(r.out.find("yuv420p"), std::string::npos);
}

// Every bad input: a one-line message, a non-zero exit, and no output file.
TEST_F(ToolCli, BadInputLeavesNothing) {
    kt::Picture pic;
    pic.width = 5;
    pic.height = 4;
    pic.channels = 3;
    pic.data = randomBytes(5 * 4 * 3, 14);
    kt::writePng((dir / "odd.png").string(), pic);
    std::vector<uint8_t> png = bytesOf(dir / "odd.png");
    spill(dir / "short.png", std::vector<uint8_t>(png.begin(), png.begin() + static_cast<long>(png.size() / 2)));
    std::vector<uint8_t> bad = png;
    for (std::size_t i = 40; i < bad.size() - 20; ++i) bad[i] ^= 0x5a;
    spill(dir / "corrupt.png", bad);
    spill(dir / "text.png", {'h', 'e', 'l', 'l', 'o'});
    spill(dir / "frame.yuv", std::vector<uint8_t>(5 * 4 * 3, 128));
    spill(dir / "420.yuv", std::vector<uint8_t>(4 * 4 + 2 * 4, 128));
    spill(dir / "43.yuv", std::vector<uint8_t>(4 * 3 + 2 * 4, 128));
    spill(dir / "f6.yuv", std::vector<uint8_t>(4 * 6 + 2 * 2 * 3, 128));
    spill(dir / "deep.ppm", {'P', '6', ' ', '1', ' ', '1', ' ', '6', '5', '5', '3', '5', '\n', 0, 0, 0, 0, 0, 0});
    const std::vector<std::string> before = entries();

    const struct {
        const char* args;
        int exitCode;  // 2 for a mistake on the command line, 1 for a file the tool cannot use
        const char* says;
    } cases[] = {
        {"convert odd.png out.yuv --to yuv4444p", 2, "unknown pixel format 'yuv4444p'"},
        {"convert odd.png out.yuv --from nope", 2, "unknown pixel format 'nope'"},
        {"convert frame.yuv out.png --from yuv444p --size 4x4", 1, "not a whole number"},
        {"convert frame.yuv out.png --from yuv444p --size 6x4", 1, "not a whole number"},
        {"convert frame.yuv out.png --from yuv444p", 2, "--size"},
        {"convert frame.yuv out.png --size 5x4", 2, "--from"},
        {"convert frame.yuv out.png --from yuv444p --size 5by4", 2, "--size"},
        {"convert missing.png out.png", 1, "cannot read missing.png"},
        {"convert short.png out.png", 1, "short.png is not a readable PNG"},
        {"convert corrupt.png out.png", 1, "corrupt.png is not a readable PNG"},
        {"convert text.png out.png", 1, "not a PNG"},
        {"convert deep.ppm out.png", 1, "8-bit"},
        {"convert odd.png out.yuv --to yuv420p", 1, "yuv420p cannot hold a 5x4 image"},
        {"convert f6.yuv out.yuv --from yuv420p --to yuv422p --size 4x6 --matrix filter", 1, "kroiYCbCr420ToYCbCr422_Filter_8u_P3R converts whole groups of 8 rows: it would leave the last 6 rows"},
        {"convert odd.png out.yuv --to yuyv422", 1, "yuyv422 cannot hold a 5x4 image"},
        {"convert 420.yuv out.yuv --from yuv420p --size 3x4 --to rgb24", 1, "not a whole number of 3x4 yuv420p frames of 20 bytes"},
        {"convert 43.yuv out.rgb --from yuv420p --size 4x3 --to rgb24", 1, "yuv420p cannot hold a 4x3 image as kroiYUV420ToRGB_8u_P3C3R converts it: the operation leaves the last row unwritten"},
        {"convert odd.png out.yuv --to yuyv422 --matrix bt601", 1, "yuyv422 cannot hold a 5x4 image as kroiRGBToYCbCr422_8u_C3C2R converts it: the operation leaves the last column unwritten"},
        {"convert 420.yuv out.yuv --from yuv420p --size 4x4 --to yuv444p", 1, "no operation of this build converts yuv420p"},
        {"convert odd.png out.png --to gray --matrix bt709", 1, "no operation of this build converts rgb24 to gray with model bt709 (model luma does)"},
        {"convert odd.png out.yuv --to yuv444p --matrix bt2020", 2, "unknown model 'bt2020'"},
        {"convert odd.png out.ppm --to rgba", 1, "PPM file cannot hold alpha"},
        {"convert odd.png out.pgm", 1, "PGM file holds one channel"},
        {"convert odd.png out.png --to nv12", 1, "a PNG file cannot hold nv12"},
        {"convert odd.png", 2, "needs an input and an output"},
        {"convert odd.png out.png --bogus", 2, "unknown option"},
        {"demo --out", 2, "needs a value"},
        {"demo missing.png --out d", 1, "cannot read missing.png"},
        {"frobnicate", 2, "unknown command"},
    };
    for (const auto& c : cases) {
        const Outcome r = run(c.args);
        EXPECT_EQ(r.status, c.exitCode) << c.args;
        EXPECT_EQ(r.out, "") << c.args;
        EXPECT_NE(r.err.find(c.says), std::string::npos) << c.args << "\n  said: " << r.err;
        EXPECT_EQ(std::count(r.err.begin(), r.err.end(), '\n'), 1) << c.args << "\n  said: " << r.err;
        EXPECT_EQ(r.err.rfind("krocc: ", 0), 0u) << r.err;
        EXPECT_EQ(entries(), before) << c.args;
    }
}

// A failure after the output was begun (here: the output is a directory)
// leaves no temporary file either.
TEST_F(ToolCli, FailedRenameLeavesNoTemporary) {
    kt::Picture pic;
    pic.width = 3;
    pic.height = 2;
    pic.channels = 3;
    pic.data = randomBytes(18, 15);
    kt::writePng((dir / "a.png").string(), pic);
    fs::create_directories(dir / "taken.png" / "inside");
    const std::vector<std::string> before = entries();
    const Outcome r = run("convert a.png taken.png");
    EXPECT_NE(r.status, 0);
    EXPECT_NE(r.err.find("cannot write taken.png"), std::string::npos) << r.err;
    EXPECT_EQ(entries(), before);
}
