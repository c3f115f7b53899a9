#include "benchmarks/image_data.h"

#include <VelaBinaryIO/VBFFile.h>

#include <cmath>
#include <cstring>
#include <random>

namespace vela_bench {

namespace {

/// Fills a stack of 128 planes with `make(random)`, sample by sample.
template <class Sample, class Make>
ImageData made(const std::string& name, vela_dt dt, std::uint64_t height, Make make)
{
    ImageData data{name, dt, {512, height, 128}, {}};
    std::mt19937 random(1);
    data.bytes.resize(512 * height * 128 * sizeof(Sample));
    for (std::size_t at = 0; at < data.bytes.size(); at += sizeof(Sample))
    {
        const Sample sample = make(random);
        std::memcpy(data.bytes.data() + at, &sample, sizeof sample);
    }
    return data;
}

/// Shot noise of `mean` photons over the offset and the reading noise of a camera.
ImageData camera(const std::string& name, double mean)
{
    return made<std::uint16_t>(name, vela_dt_uint16, 512,
                               [noise = std::normal_distribution<double>(100 + mean, std::sqrt(mean + 4))](
                                   std::mt19937& random) mutable { return static_cast<std::uint16_t>(noise(random)); });
}

ImageData photons()
{
    return made<std::uint16_t>("photons", vela_dt_uint16, 512,
                               [](std::mt19937& random)
                               { return static_cast<std::uint16_t>(random() % 50 == 0 ? random() % 4 + 1 : 0); });
}

ImageData singles()
{
    return made<float>("single", vela_dt_single, 256,
                       [noise = std::normal_distribution<float>(100, 3)](std::mt19937& random) mutable
                       { return noise(random); });
}

ImageData real()
{
    VBFFile file(VPropstring(VELA_EXAMPLE_DATA "/golgi.vbf", VPropstring::enc_utf8), VFile::read_mode);
    const boost::shared_ptr<VBFStackInterface> stack = file->get_stack(0);
    ImageData data{"golgi", stack->get_dt(), stack->get_sizes(), {}};
    data.sizes.resize(3, 1);
    data.bytes.resize(stack->get_size(vela_dt_none));
    stack->read(data.dt, data.bytes.data(), nullptr);
    return data;
}

} // namespace

const std::vector<ImageData>& image_data()
{
    static const std::vector<ImageData> all = {camera("bright", 2000), camera("dim", 4), photons(), singles(), real()};
    return all;
}

} // namespace vela_bench
