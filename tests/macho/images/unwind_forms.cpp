// Throws through the frames of frames_*.cpp and looks whether the registers come back.

#include <stdexcept>
#include <string>

namespace {

using Call = void (*)(void*);
using Frame = void (*)(Call, void*);

volatile long g_seed = 3;

// The object's destructor has to run on the way, too.
struct Step {
    explicit Step(int& steps) : m_steps(steps) {}
    Step(const Step&) = delete;
    Step& operator=(const Step&) = delete;
    ~Step() { ++m_steps; }

  private:
    int& m_steps;
};

void throwText(void* steps) {
    const Step step(*static_cast<int*>(steps));
    throw std::runtime_error("thrown");
}

// More values than registers that a call must leave alone, all needed before and after it.
struct Values {
    long whole[9];
    double real[8];
};

template <typename Between>
Values change(long seed, Between between) {
    long a = seed * 2, b = seed * 3, c = seed * 5, d = seed * 7, e = seed * 11, f = seed * 13,
         g = seed * 17, h = seed * 19, i = seed * 23;
    const auto real = static_cast<double>(seed);
    double p = real * 2, q = real * 3, r = real * 5, s = real * 7, t = real * 11, u = real * 13,
           v = real * 17, w = real * 19;
    for (int round = 0; round < 3; ++round) {
        between();
        a += b, b += c, c += d, d += e, e += f, f += g, g += h, h += i, i += a;
        p += q, q += r, r += s, s += t, t += u, u += v, v += w, w += p;
    }
    return {{a, b, c, d, e, f, g, h, i}, {p, q, r, s, t, u, v, w}};
}

bool areSame(const Values& one, const Values& other) {
    for (int i = 0; i < 9; ++i)
        if (one.whole[i] != other.whole[i]) return false;
    for (int i = 0; i < 8; ++i)
        if (one.real[i] < other.real[i] || one.real[i] > other.real[i]) return false;
    return true;
}

}  // namespace

/// @return 0: every throw was caught here with everything as it was; otherwise the step that
/// failed.
extern "C" __attribute__((visibility("default"))) int throwThrough(Frame frame) {
    int steps = 0;
    int caught = 0;
    const Values thrown = change(g_seed, [&] {
        try {
            frame(throwText, &steps);
        } catch (const std::runtime_error& error) {
            caught += std::string(error.what()) == "thrown" ? 1 : 0;
        }
    });
    const Values plain = change(g_seed, [] { g_seed = 3; });
    if (caught != 3) return 1;
    if (steps != 3) return 2;
    return areSame(thrown, plain) ? 0 : 3;
}
