#include "tests/shell/animation/animate_support.hpp"
#include "tests/support/read_picture.hpp"

#include <array>

namespace {

using korl::Image;
using korl::test::ProgramResult;
using korl::test::runProgram;
using testing::ElementsAre;
using testing::HasSubstr;

class FilmGLTest : public korl::test::Animating {
protected:
    /// What the film says about its pictures.
    std::string facts(const std::string& film) const {
        return runProgram("/usr/bin/ffprobe",
                          {"-v", "error", "-count_frames", "-show_entries",
                           "stream=codec_name,width,height,pix_fmt,r_frame_rate,nb_read_frames", "-of",
                           "csv=p=0", folder / film})
            .output;
    }

    Image frame(const std::string& film, int number) const {
        const std::string file = folder / "decoded.png";
        runProgram("/usr/bin/ffmpeg",
                   {"-v", "error", "-y", "-i", folder / film, "-vf",
                    "select=eq(n\\," + std::to_string(number) + ")", "-frames:v", "1", file});
        return korl::test::readPicture(file);
    }

    /// Puts a script in front of ffmpeg.
    void useFfmpeg(const std::string& script) {
        std::filesystem::create_directories(folder / "bin");
        const auto program = folder.write("bin/ffmpeg", "#!/bin/sh\n" + script);
        std::filesystem::permissions(program, std::filesystem::perms::owner_all);
        const std::string path = std::getenv("PATH");
        environment = {{"PATH", (folder / "bin").string() + ":" + path}};
    }

    const Words colors{"--light",  "AmbientLight:a", "--vary",   "a.Color=0.9 0.1 0.2 1:0.1 0.3 0.8 1",
                       "--camera", "0 0 0.3",        "--target", "0 0 0",
                       "--up",     "0 1 0",          "--frames", "3"};
};

TEST_F(FilmGLTest, AnMp4PlaysInBrowsers) {
    size = "41x31";
    const ProgramResult result = animate(joined(colors, {"--fps", "12.5"}), "f.mp4");
    ASSERT_EQ(result.exit_code, 0) << result.errors;
    EXPECT_THAT(result.errors, HasSubstr("korl: wrote " + (folder / "f.mp4").string() + ", 3 frames\n"));
    EXPECT_THAT(files(), ElementsAre("f.mp4"));
    EXPECT_EQ(facts("f.mp4"), "h264,42,32,yuv420p,25/2,3\n");
    const std::string film = bytes("f.mp4");
    EXPECT_LT(film.find("moov"), film.find("mdat")); // plays before all of it has come
}

TEST_F(FilmGLTest, FilmsHaveTheFramesColorsInTheirOrder) {
    ASSERT_EQ(animate(colors, "f_#.png").exit_code, 0);
    for (const std::string film : {"f.mp4", "f.gif"}) {
        ASSERT_EQ(animate(colors, film).exit_code, 0);
        for (int number = 0; number < 3; ++number) {
            const Image shown = frame(film, number);
            const Image drawn =
                korl::test::readPicture(folder / ("f_" + std::to_string(number + 1) + ".png"));
            ASSERT_EQ(shown.pixels.size(), drawn.pixels.size());
            const std::size_t middle = 4 * (8 * 24 + 12);
            for (std::size_t channel = 0; channel < 3; ++channel)
                EXPECT_NEAR(shown.pixels[middle + channel], drawn.pixels[middle + channel], 14)
                    << film << " " << number << " " << channel;
        }
    }
}

TEST_F(FilmGLTest, AnMp4HasTheBackgroundsColorThoughItIsSeenThrough) {
    const Words skyward{"--light",  "AmbientLight", "--background", "#2040c000",
                        "--target", "0 0 9",        "--frames",     "1"};
    ASSERT_EQ(animate(skyward, "f.mp4").exit_code, 0);
    const Image shown = frame("f.mp4", 0);
    const std::array<int, 3> blue{0x20, 0x40, 0xc0};
    for (std::size_t channel = 0; channel < 3; ++channel)
        EXPECT_NEAR(shown.pixels[channel], blue[channel], 14);
}

TEST_F(FilmGLTest, AGifIsRepeatedForEver) {
    ASSERT_EQ(animate(joined(colors, {"--fps", "10"}), "f.gif").exit_code, 0);
    EXPECT_EQ(facts("f.gif"), "gif,24,16,bgra,10/1,3\n");
    EXPECT_THAT(bytes("f.gif"), HasSubstr(std::string("NETSCAPE2.0\x03\x01\0\0", 15)));
}

TEST_F(FilmGLTest, FramesOfAFilmThatFailedAreKeptForTheNextTry) {
    useFfmpeg("echo no film today >&2\nexit 3\n");
    folder.write("f.mp4", "an old film");
    const ProgramResult failed = animate(joined(colors, {"--quiet"}), "f.mp4");
    EXPECT_EQ(failed.exit_code, 1);
    EXPECT_EQ(failed.errors,
              "korl: cannot make the film " + (folder / "f.mp4").string() +
                  ": ffmpeg ended with exit code 3 and said:\nno film today\nThe frames stay in " +
                  (folder / "f.mp4.frames").string() +
                  ": mend the cause, a full disk perhaps, and resume the sequence.\n");
    EXPECT_EQ(bytes("f.mp4"), "an old film");
    EXPECT_THAT(files("f.mp4.frames"), testing::Contains("frame_000003.png"));

    environment = {};
    const ProgramResult resumed = animate(joined(colors, {"--resume"}), "f.mp4");
    EXPECT_THAT(resumed.errors, HasSubstr("3 frames; 3 of them were there already\n"));
    EXPECT_THAT(files(), ElementsAre("bin", "f.mp4"));
    EXPECT_EQ(facts("f.mp4"), "h264,24,16,yuv420p,25/1,3\n");
}

TEST_F(FilmGLTest, LessThanAFilmIsAnErrorWhateverFfmpegSaysOfIt) {
    struct Case {
        std::string script, what;
    };
    const std::string real = "/usr/bin/ffmpeg \"$@\"\n";
    const std::vector<Case> table{
        {"exit 0\n", "did not write all of it"},
        {": > film.gif\n", "did not write all of it"},
        {real + "head -c -1 film.gif > half && mv half film.gif\n", "did not write all of it"},
        {real + "echo the disk is full >&2\n", "did not write all of it and said:\nthe disk is full"},
        {real + "for i in 1 2 3 4 5 6 7; do printf 'line %s\\033\\n' $i >&2; done\n",
         "did not write all of it and said:\nline 3\\x1b\nline 4\\x1b\nline 5\\x1b\nline 6\\x1b\nline "
         "7\\x1b"},
        // What it says is kept off the disk, which may be full.
        {"ls >&2\n",
         "did not write all of it and said:\nframe_000001.png\nframe_000002.png\nframe_000003.png"},
        {"kill -9 $$\n", "ended with signal 9 (Killed)"},
    };
    folder.write("f.gif", "an old film");
    for (const auto& [script, what] : table) {
        useFfmpeg(script);
        const ProgramResult result = animate(joined(colors, {"--quiet", "--resume"}), "f.gif");
        EXPECT_EQ(result.exit_code, 1);
        EXPECT_EQ(result.errors, "korl: cannot make the film " + (folder / "f.gif").string() + ": ffmpeg " +
                                     what + "\nThe frames stay in " + (folder / "f.gif.frames").string() +
                                     ": mend the cause, a full disk perhaps, and resume the sequence.\n");
        EXPECT_EQ(bytes("f.gif"), "an old film");
        EXPECT_THAT(files("f.gif.frames"), testing::Contains("frame_000003.png"));
        EXPECT_THAT(files("f.gif.frames"), testing::Not(testing::Contains("film.gif")));
    }
}

TEST_F(FilmGLTest, AFilmThatMayNotGrowIsAnError) {
    // As on a full disk: the write fails. The files of a shell's limit have blocks of 512 bytes.
    size = "120x80";
    useFfmpeg("ulimit -f 1; trap '' XFSZ; exec /usr/bin/ffmpeg \"$@\"\n");
    for (const std::string film : {"f.gif", "f.mp4"}) {
        const ProgramResult result = animate(joined(sun, {"--sun-time", "6:18", "--frames", "3"}), film);
        EXPECT_EQ(result.exit_code, 1);
        EXPECT_THAT(result.errors, HasSubstr("File too large"));
        EXPECT_THAT(files(film + ".frames"), testing::Contains("frame_000003.png"));
        EXPECT_FALSE(std::filesystem::exists(folder / film));
    }
}

TEST_F(FilmGLTest, IsMadeWhereTheParentIgnoresTheEndsOfChildProcesses) {
    std::vector<std::string> arguments{"--ignore-signal=CHLD", KORL_PROGRAM};
    for (const std::string& word : words(colors, "f.gif"))
        arguments.push_back(word);
    const ProgramResult result = runProgram("/usr/bin/env", arguments);
    EXPECT_EQ(result.exit_code, 0) << result.errors;
    EXPECT_THAT(files(), ElementsAre("f.gif"));
}

TEST_F(FilmGLTest, ALinkToAFilmStays) {
    std::filesystem::create_directory(folder / "elsewhere");
    folder.write("elsewhere/old.gif", "an old film");
    std::filesystem::create_symlink("elsewhere/old.gif", folder / "f.gif");
    ASSERT_EQ(animate(colors, "f.gif").exit_code, 0);
    EXPECT_TRUE(std::filesystem::is_symlink(folder / "f.gif"));
    EXPECT_EQ(facts("elsewhere/old.gif"), "gif,24,16,bgra,25/1,3\n");
    EXPECT_THAT(files("elsewhere"), ElementsAre("old.gif"));
}

TEST_F(FilmGLTest, FilesOfOthersBesideTheFramesStay) {
    std::filesystem::create_directory(folder / "f.gif.frames");
    folder.write("f.gif.frames/mine.txt", "mine");
    ASSERT_EQ(animate(colors, "f.gif").exit_code, 0);
    EXPECT_THAT(files("f.gif.frames"), ElementsAre("mine.txt"));
}

TEST_F(FilmGLTest, WithoutFfmpegNothingIsBegun) {
    environment = {{"PATH", folder.path()}};
    const ProgramResult result = animate(colors, "f.mp4");
    EXPECT_EQ(result.exit_code, 1);
    EXPECT_EQ(result.errors,
              "korl: cannot make the film " + (folder / "f.mp4").string() +
                  ": there is no ffmpeg on the PATH; install it (on Debian the package ffmpeg), "
                  "or write pictures, such as \"day_####.png\"\n");
    EXPECT_THAT(files(), ElementsAre());
}

} // namespace
