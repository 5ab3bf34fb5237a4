// SPDX-License-Identifier: Zlib
#include "examples/27_sound/mixer.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

namespace keltra::test {
namespace {

using Samples = std::vector<std::int16_t>;

Samples mix(Mixer *mixer, int count) {
    Samples samples(static_cast<std::size_t>(count));
    mixer->mix(samples.data(), count);
    return samples;
}

int loudest(const Samples &samples) {
    int most = 0;
    for (int sample : samples) most = std::max(most, std::abs(sample));
    return most;
}

TEST(MixerTest, IsSilentAtFirstAndAtTheEnd) {
    Mixer mixer;
    EXPECT_EQ(loudest(mix(&mixer, 1000)), 0);
    mixer.strike(440.0f);
    EXPECT_GT(loudest(mix(&mixer, 1000)), 3000);
    mix(&mixer, 5 * Mixer::kRate);
    EXPECT_EQ(loudest(mix(&mixer, 1000)), 0);
}

TEST(MixerTest, PlaysTheToneThatWasAskedFor) {
    for (float hertz : {293.7f, 440.0f, 784.0f}) {
        Mixer mixer;
        mixer.strike(hertz);
        const Samples second = mix(&mixer, Mixer::kRate / 2);
        int crossings = 0;
        for (std::size_t i = 1; i < second.size(); ++i) crossings += second[i - 1] < 0 && second[i] >= 0;
        EXPECT_NEAR(static_cast<float>(crossings), 0.5f * hertz, 3.0f);
    }
}

TEST(MixerTest, NeverLeavesItsRange) {
    Mixer mixer;
    Mixer single;
    single.strike(440.0f);
    const int one = loudest(mix(&single, 200));
    for (int i = 0; i < 3 * Mixer::kVoices; ++i) mixer.strike(440.0f);
    const Samples samples = mix(&mixer, 200);
    EXPECT_GT(loudest(samples), 6 * one) << "all voices sound";
    for (std::size_t i = 1; i < samples.size(); ++i)
        EXPECT_LT(std::abs(samples[i] - samples[i - 1]), 16000) << "it has wrapped around";
}

TEST(MixerTest, TakesTheVoiceThatIsNearestItsEnd) {
    Mixer mixer;
    for (int i = 0; i < Mixer::kVoices; ++i) {
        mixer.strike(300.0f);
        mix(&mixer, 2000);
    }
    const int before = loudest(mix(&mixer, 400));
    mixer.strike(300.0f);
    EXPECT_GT(loudest(mix(&mixer, 400)), before);
}

}  // namespace
}  // namespace keltra::test
