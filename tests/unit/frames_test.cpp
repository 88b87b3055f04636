// Frame files of every format, as the programs that record them write them.
#include <gtest/gtest.h>

#include "tools/frames/frame_figures.h"
#include "tools/frames/frame_file.h"

namespace {

std::string lines(const std::string &line, int count) {
    std::string text;
    for (int i = 0; i < count; ++i)
        text += line + "\n";
    return text;
}

std::string utf16(const std::string &text, bool big) {
    std::string wide = big ? "\xfe\xff" : "\xff\xfe";
    for (const char c : text)
        wide += big ? std::string(1, '\0') + c : std::string(1, c) + '\0';
    return wide;
}

// clang-format off
const std::string presentmon =
    "Application,ProcessID,SwapChainAddress,Runtime,SyncInterval,PresentFlags,AllowsTearing,"
    "PresentMode,WasBatched,DwmNotified,Dropped,TimeInSeconds,MsBetweenPresents,"
    "MsBetweenDisplayChange,MsInPresentAPI,MsUntilRenderComplete,MsUntilDisplayed";
std::string present(const std::string &app, const std::string &chain, const std::string &values) {
    return app + ",42," + chain + ",DXGI,0,512,0,Hardware: Independent Flip,0,0," +
           (values.ends_with(",0") ? "1" : "0") + ",1.5," + values + ",0.3,12.1,20.2\n";
}
const std::string mixed =
    presentmon + "\n" + present("dwm.exe", "0x9", "5,6") + present("game.exe", "0x1", "16.6,16.7") +
    present("game.exe", "0x1", "17.4,0") + present("game.exe", "0x2", "1,1") +
    present("game.exe", "0x1", "16.8,16.7");
const std::string presentmon_2 =
    "Application,ProcessID,SwapChainAddress,PresentRuntime,SyncInterval,PresentFlags,AllowsTearing,"
    "PresentMode,";
const std::string present_2 = "\ng.exe,1,0x1,DXGI,1,0,0,Composed: Flip,";
const std::string presentmon_2_0 =
    presentmon_2 + "CPUStartTime,FrameTime,CPUBusy,CPUWait,GPULatency,GPUTime,DisplayedTime" +
    present_2 + "0,0.8,1,1,1,1,NA" + present_2 + "1,0.9,1,1,1,1,16.7";
const std::string presentmon_2_3 =
    presentmon_2 + "TimeInSeconds,MsBetweenSimulationStart,MsBetweenPresents,MsBetweenAppStart" +
    present_2 + "0,NA,NA,NA" + present_2 + "0.1,NA,16.5,16.7";
const std::string ocat =
    presentmon + ",Motherboard,OS,Processor,System RAM,Base Driver Version,Driver Package,GPU #,"
    "GPU,GPU Core Clock (MHz),GPU Memory Clock (MHz)\n" + present("g.exe", "1", "16.5,1") +
    present("g.exe", "1", "17.5,1") + "g.exe,42,1,DXGI,0,512,0,Hardware,0,0,0,1.5,16";
const std::string frameview =
    "Application,GPU,CPU,Resolution,Runtime,AllowsTearing,ProcessID,SwapChainAddress,SyncInterval,"
    "PresentFlags,PresentMode,Dropped,TimeInSeconds,MsBetweenPresents,MsBetweenDisplayChange,"
    "MsInPresentAPI,MsRenderPresentLatency,MsUntilDisplayed,Render Queue Depth,GPU0Clk(MHz)\n"
    "g.exe,GPU,CPU,1920x1080,DXGI,0,1,0x1,0,0,Hardware,0,1,6.598,NA,0.1,5,9,2,1000\n";
const std::string mangohud =
    "os,cpu,gpu,ram,kernel,driver,cpuscheduler\nArch Linux,CPU,GPU,16,5.9,Mesa,schedutil\n"
    "fps,frametime,cpu_load,elapsed\n";
const std::string mangohud_new =
    "v1\n0.7.2\n---------------------SYSTEM INFO---------------------\nos,cpu,gpu\nArch,CPU,GPU\n"
    "--------------------FRAME METRICS--------------------\nfps,frametime,cpu_load,elapsed\n";
const std::string hml =
    "00, 27-12-2018 17:41:08, Hardware monitoring log v1.5 \r\n"
    "02, 27-12-2018 17:41:08, GPU temperature     ,Framerate           ,Frametime           \r\n"
    "03, 27-12-2018 17:41:08, 0                   ,\xb0" "C                  ,0.000      \r\n"
    "80, 27-12-2018 17:41:09, 51.000              ,N/A                 ,N/A                 \r\n"
    "80, 27-12-2018 17:41:09, 51.000              ,60.000              ,16.667              \r\n"
    "80, 27-12-2018 17:41:14, 51.000              ,50.000              ,20.000              \r\n";
const std::string gfxinfo =
    "Applications Graphics Acceleration Info:\n** Graphics info for pid 42 [com.a] **\n\n" +
    lines("HISTOGRAM: 5ms=1", 60) + "---PROFILEDATA---\nFlags,IntendedVsync,Vsync,FrameCompleted,\n"
    "0,27965466202353,1,9223372036854775807,\n0,27965482869020,1,2,\n1,27965482869021,1,2,\n"
    "0,-1,1,2,\n0,27971482869020,1,2,\n0,2796\n---PROFILEDATA---\n\n---PROFILEDATA---\n"
    "Flags,FrameTimelineVsyncId,IntendedVsync,\n0,7,77965482869020,\n0,8,77965492869020,\n"
    "---PROFILEDATA---\nView hierarchy:\n";
const std::string latency = "WARNING: linker: unused\n16666666\n0\t0\t0\n1\t1000000000\t3\n"
                            "2 1016000000 3\n2\t9223372036854775807\t3\n";
const std::string perfetto =
    "\"ts\",\"dur\",\"surface_frame_token\",\"upid\",\"layer_name\",\"jank_type\"\n" +
    lines("1000000000000,12,1,5,\"[NULL]\",\"None\"", 3) +
    "1000016000000,12,1,5,\"TX - a#0\",\"None\"\n1000000000000,12,1,5,\"TX - a#0\",\"Dropped\"\n";
const std::string capframex =
    "{\"Info\":{\"ProcessName\":\"re2.exe\"},\"Runs\":[{\"CaptureData\":{\"TimeInSeconds\":[0,1],\n"
    "\"MsBetweenPresents\":[8.5,0.0,\"NaN\"]},\"SensorData\":{\"MsBetweenPresents\":[7]}},"
    "{\"CaptureData\":{\"MsBetweenPresents\":[9]}}]}";
const std::string recording =
    "{\"dvx_recording\":1}\n{\"t\":1,\"in\":\"message\",\"us\":7,\"text\":\"interval\"}\n"
    "{\"t\":61204123456,\"thread\":\"kevent_monitor\",\"in\":\"interval\",\"us\":16667}\n"
    "{\"us\": 16000, \"in\" : \"interval\"}\n{\"t\":2,\"in\":\"interval\",\"us\":16";

struct sample {
    const char *format;
    std::string content;
    frame_options options;
    std::vector<double> intervals_us;
    const char *unit = "ms";
    size_t left_out = 0;
};

const sample samples[] = {
    {"one number a line", "\xef\xbb\xbf# x\n16666\n\n 33333 \r\n-5", {}, {16666, 33333}, "us", 1},
    {"one number a line", "0.5\n0.516\n0.532\n", {.difference = true}, {16000, 16000}, "s"},
    {"one number a line", "7\n8\n", {.unit = "ns"}, {0.007, 0.008}, "ns"},
    {"CSV", "sep=;\n\"Frametime (ms)\";\n16,5;1\n1.017,5\n;3\n", {}, {16500, 1017500}, "ms", 1},
    {"CSV", lines("no frames, here", 49) + "t\tFRAMETIME\n1\t 17 \n1\t18\n", {}, {17000, 18000}},
    {"CSV", "interval_us,\"\"\"b\nc\"\n16000,1\n\"16500\",\"x\ny\"\n", {}, {16000, 16500}, "us"},
    {"CSV", "1,16000,3\n2,17000,3\n", {.column = "2"}, {16000, 17000}, "us"},
    {"CSV", "a,Wanted\n1,16000\na,Wanted\n2,17000\n", {.column = "wanted"}, {16000, 17000}, "us"},
    {"PresentMon 1", mixed, {}, {16600, 17400, 16800}},
    {"PresentMon 1", utf16(mixed, false), {}, {16600, 17400, 16800}},
    {"PresentMon 1", utf16(mixed, true).substr(2), {.app = "DWM"}, {5000}},
    {"PresentMon 1", mixed, {.column = "MsBetweenDisplayChange"}, {16700, 16700}, "ms", 1},
    {"PresentMon 2.0", presentmon_2_0, {}, {800, 900}},
    {"PresentMon 2.0", presentmon_2_0, {.column = "displayedtime"}, {16700}, "ms", 1},
    {"PresentMon 2.3", presentmon_2_3, {}, {16500}, "ms", 1},
    {"OCAT", ocat, {}, {16500, 17500}, "ms", 1},
    {"FrameView", frameview, {}, {6598}},
    {"MangoHud", mangohud + "2000,500,1,500000\n2000,500,1,1000000\n", {}, {500, 500}, "us"},
    {"MangoHud", mangohud_new + "59.9,16.7,1,1\n500,2,1,3\n500,2,1,5\n", {}, {16700, 2000, 2000}},
    {"CapFrameX", "//GPU=G\n" + presentmon + "\n" + present("g", "1", "10.2,10"), {}, {10200}},
    {"CapFrameX JSON", capframex, {}, {8500, 9000}, "ms", 2},
    {"Afterburner", hml, {}, {16667, 20000}, "ms", 1},
    {"gfxinfo framestats", gfxinfo, {}, {16666.667, 6000000, 10000}, "ns", 3},
    {"SurfaceFlinger latency", latency, {}, {16000}, "ns", 2},
    {"Perfetto frame timeline", perfetto, {}, {16000}, "ns"},
    {"dvxd recording", recording, {}, {16667, 16000}, "us", 1}};

struct refusal {
    std::string content;
    const char *reason;
    frame_options options = {};
};

const refusal refused[] = {
    {mixed, "no application 'other'; there are: dwm.exe (process 42) swap ch", {.app = "other"}},
    {hml, "column Framerate holds frame rates", {.column = "framerate"}},
    {mixed, "no column 'x'; there are: Application, ProcessID", {.column = "x"}},
    {"", "an empty file"},
    {std::string("\x7f" "ELF\0\1", 6), "a binary file"},
    {std::string(2 << 20, '1'), "line 1: longer than 1 MiB"},
    {"interval\n16.7\n\"17\n", "line 3: a quote is not closed"},
    {"a,b\n1,2\n", "no column of frame intervals; say which with --column; there are: a, b"},
    {"interval,b\nNA,1\n,1\n16.7,1\n", "more than half of the rows have no value in column "
                                       "interval, 2 of 3: 2 without a number ('NA' in line 2)"},
    {"0.0001\n", "no unit makes intervals of a median of 0.0001"},
    {"nan\ninf\n1e9999\n0x10\n", "not a frame file"},
    {"0.1% Min FPS,Average FPS,GPU Load\n10,50,99\n", "a summary of a recording"},
    {"\tDraw\tPrepare\tProcess\tExecute\n\t1\t2\t3\t4\n", "its tables are the work of each frame"},
    {"** Graphics info for pid 1 [a] **\n", "dumpsys gfxinfo without frames"},
    {"16666666\n" + lines("0\t0\t0", 127), "no frames, every row is zero: the layer's name"},
    {"{\"Runs\":[\n{\"CaptureData\":\n", "line 3: broken JSON"},
    {"{\"a\":1}", "JSON, but neither"},
    {std::string(1000, '['), "JSON that is nested too deep"},
    {"{\"dvx_recording\":2}\n", "a recording of version 2"}};
// clang-format on

TEST(FrameFiles, GiveTheIntervalsOfEveryFormat) {
    for (const sample &each : samples) {
        const frame_file file = frame_file_read_text(each.content, each.options);
        SCOPED_TRACE(each.content.substr(0, 200) + "\n" + file.error + file.left_out_why);
        EXPECT_EQ(file.format, each.format);
        EXPECT_EQ(file.unit, each.unit);
        EXPECT_EQ(file.left_out, each.left_out);
        ASSERT_EQ(file.intervals_us.size(), each.intervals_us.size());
        for (size_t i = 0; i < each.intervals_us.size(); ++i)
            EXPECT_NEAR(file.intervals_us[i], each.intervals_us[i], 1e-3);
    }
}

TEST(FrameFiles, AreRefusedWithTheReason) {
    for (const auto &[content, reason, options] : refused) {
        const frame_file file = frame_file_read_text(content, options);
        EXPECT_EQ(file.error.find(reason), 0u) << file.error;
        EXPECT_TRUE(file.intervals_us.empty()) << reason;
    }
}

TEST(FrameFiles, TellSamplesFromFrames) {
    for (const char *second_ns : {"17000000", "100000000"}) {
        const std::string log = mangohud_new + "60,16.7,1,0\n60,16.7,1," + second_ns + "\n";
        EXPECT_EQ(frame_file_read_text(log, {}).sampled, std::string(second_ns) == "100000000");
    }
    EXPECT_TRUE(frame_file_read_text(hml, {}).sampled);
}

TEST(FrameFigures, TakeTheSlowestFramesByTheirNumber) {
    std::vector<double> intervals_us(1990, 10000);
    intervals_us.insert(intervals_us.begin(), 10, 20000);
    intervals_us[1000] = 110000;
    const frame_figures of = frame_figures_of(intervals_us);
    EXPECT_DOUBLE_EQ(of.median_us, 10000);
    EXPECT_NEAR(of.duration_s, 20.2, 1e-9);
    EXPECT_NEAR(of.fps_mean, 2000 / 20.2, 1e-9);
    EXPECT_NEAR(of.fps_1_low, 20 / (0.11 + 10 * 0.02 + 9 * 0.01), 1e-9);
    EXPECT_NEAR(of.fps_0_1_low, 2 / (0.11 + 0.02), 1e-9);
    EXPECT_EQ(of.above_1_5_median, 11u);
    EXPECT_EQ(of.above_2_median, 1u);
}

}  // namespace
