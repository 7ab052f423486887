// JPEG 2000 files, whole programs: `vekpix` beside the tools of two independent codecs, which read and write the same
// PPM files in a folder of the system's for temporary ones.
#include <benchmark/benchmark.h>

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "jpeg_peer.h"
#include "support/temporary_folder.h"

namespace {

namespace fs = std::filesystem;
using Command = std::vector<std::string>;

const support::TemporaryFolder& folder()
{
    static const support::TemporaryFolder made("vekjp_bench_");
    return made;
}

bool run(Command command)
{
    std::vector<char*> arguments;
    for (std::string& argument : command) arguments.push_back(argument.data());
    arguments.push_back(nullptr);
    posix_spawn_file_actions_t silence;
    posix_spawn_file_actions_init(&silence);
    posix_spawn_file_actions_addopen(&silence, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
    pid_t child = 0;
    const bool began = posix_spawnp(&child, arguments[0], &silence, nullptr, arguments.data(), environ) == 0;
    posix_spawn_file_actions_destroy(&silence);
    int status = -1;
    return began && waitpid(child, &status, 0) == child && WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

// A picture half as wide again as high: one drawn tile, many times over.
std::string picture(int64_t width)
{
    const std::string name = folder().file("picture" + std::to_string(width) + ".ppm");
    if (fs::exists(name))
        return name;
    constexpr int side = 1000;
    const peer::Picture tile = peer::draw(side, side, 3, peer::Scene::Soft);
    const int64_t height = width * 2 / 3;
    std::ofstream out(name, std::ios::binary);
    out << "P6\n" << width << ' ' << height << "\n255\n";
    for (int64_t y = 0; y < height; ++y)
        for (int64_t x = 0; x < width; x += side)
            out.write(reinterpret_cast<const char*>(tile.pixels.data()) + y % side * side * 3, side * 3);
    return name;
}

// Of the three programs, commands for the same work.
struct Work {
    int64_t width;
    bool lossless;  // else 2 bits per pixel
    std::string threads;

    explicit Work(const benchmark::State& state)
        : width(state.range(0)), lossless(state.range(1) != 0), threads(std::to_string(state.range(2)))
    {
    }

    std::string coded(const std::string& maker) const
    {
        return folder().file(maker + std::to_string(width) + (lossless ? "_lossless" : "_lossy") + ".j2k");
    }
    // The file that all decode.
    std::string ready() const
    {
        std::string name = coded("ready");
        if (!fs::exists(name))
            run(peerEncode("opj_compress", "-threads", name));
        return name;
    }
    Command encode() const
    {
        Command command = {VEKPIX_PROGRAM, "encode", picture(width), coded("vekpix"), "--threads", threads};
        if (!lossless)
            command.insert(command.end(), {"--rate", "2"});
        return command;
    }
    Command decode() const
    {
        return {VEKPIX_PROGRAM, "decode", ready(), folder().file("vekpix.ppm"), "--threads", threads};
    }
    Command peerEncode(const std::string& program, const std::string& option, const std::string& output) const
    {
        Command command = {program, "-i", picture(width), "-o", output, option, threads};
        if (!lossless)
            command.insert(command.end(), {"-I", "-r", "12"});
        return command;
    }
    Command peerDecode(const std::string& program, const std::string& option) const
    {
        return {program, "-i", ready(), "-o", folder().file(program + ".ppm"), option, threads};
    }
};

void timeCommand(benchmark::State& state, const Work& work, const Command& command)
{
    for (auto _ : state)
        if (!run(command)) {
            state.SkipWithError((command[0] + " failed").c_str());
            return;
        }
    state.SetItemsProcessed(state.iterations() * work.width * (work.width * 2 / 3));
}

void BM_vekpix_encode_jpeg2000(benchmark::State& state)
{
    const Work work(state);
    timeCommand(state, work, work.encode());
}

void BM_peer_opj_compress(benchmark::State& state)
{
    const Work work(state);
    timeCommand(state, work, work.peerEncode("opj_compress", "-threads", work.coded("opj")));
}

void BM_peer_grk_compress(benchmark::State& state)
{
    const Work work(state);
    timeCommand(state, work, work.peerEncode("grk_compress", "-H", work.coded("grk")));
}

void BM_vekpix_decode_jpeg2000(benchmark::State& state)
{
    const Work work(state);
    timeCommand(state, work, work.decode());
}

void BM_peer_opj_decompress(benchmark::State& state)
{
    const Work work(state);
    timeCommand(state, work, work.peerDecode("opj_decompress", "-threads"));
}

void BM_peer_grk_decompress(benchmark::State& state)
{
    const Work work(state);
    timeCommand(state, work, work.peerDecode("grk_decompress", "-H"));
}

void kinds(benchmark::internal::Benchmark* bench)
{
    bench->ArgNames({"width", "lossless", "threads"})->UseRealTime()->Unit(benchmark::kMillisecond);
    for (const int64_t lossless : {1, 0})
        for (const int64_t threads : {1, 2}) bench->Args({3000, lossless, threads});
}

BENCHMARK(BM_vekpix_encode_jpeg2000)->Apply(kinds);
BENCHMARK(BM_peer_opj_compress)->Apply(kinds);
BENCHMARK(BM_peer_grk_compress)->Apply(kinds);
BENCHMARK(BM_vekpix_decode_jpeg2000)->Apply(kinds);
BENCHMARK(BM_peer_opj_decompress)->Apply(kinds);
BENCHMARK(BM_peer_grk_decompress)->Apply(kinds);

}  // namespace
