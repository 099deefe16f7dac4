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
    spill(dir / "deep.ppm", {'P', '6', ' ', '1', ' ', '1', ' ', '6', '5', '5', '3', '5', '\n', 0, 0, 0, 0, 0, 0});
    const std::vector<std::string> before = entries();

    const struct {
        const char* args;
        const char* says;
    } cases[] = {
        {"convert odd.png out.yuv --to yuv4444p", "unknown pixel format 'yuv4444p'"},
        {"convert odd.png out.yuv --from nope", "unknown pixel format 'nope'"},
        {"convert frame.yuv out.png --from yuv444p --size 4x4", "not a whole number"},
        {"convert frame.yuv out.png --from yuv444p --size 6x4", "not a whole number"},
        {"convert frame.yuv out.png --from yuv444p", "--size"},
        {"convert frame.yuv out.png --size 5x4", "--from"},
        {"convert frame.yuv out.png --from yuv444p --size 5by4", "--size"},
        {"convert missing.png out.png", "cannot read missing.png"},
        {"convert short.png out.png", "short.png is not a readable PNG"},
        {"convert corrupt.png out.png", "corrupt.png is not a readable PNG"},
        {"convert text.png out.png", "not a PNG"},
        {"convert deep.ppm out.png", "8-bit"},
        {"convert odd.png out.yuv --to yuv420p", "yuv420p cannot hold a 5x4 image"},
        {"convert odd.png out.yuv --to yuyv422", "yuyv422 cannot hold a 5x4 image"},
        {"convert 420.yuv out.yuv --from yuv420p --size 3x4 --to rgb24", "cannot hold a 3x4"},
        {"convert 420.yuv out.yuv --from yuv420p --size 4x4 --to yuv444p", "no operation of this build converts yuv420p"},
        {"convert odd.png out.png --to gray", "no operation of this build converts rgb24 to gray"},
        {"convert odd.png out.yuv --to yuv444p --matrix bt2020", "unknown model 'bt2020'"},
        {"convert odd.png out.ppm --to rgba", "PPM file cannot hold alpha"},
        {"convert odd.png out.pgm", "PGM file holds one channel"},
        {"convert odd.png out.png --to nv12", "a PNG file cannot hold nv12"},
        {"convert odd.png", "needs an input and an output"},
        {"convert odd.png out.png --bogus", "unknown option"},
        {"demo --out", "needs a value"},
        {"demo missing.png --out d", "cannot read missing.png"},
        {"frobnicate", "unknown command"},
    };
    for (const auto& c : cases) {
        const Outcome r = run(c.args);
        EXPECT_NE(r.status, 0) << c.args;
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
