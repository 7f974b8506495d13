// A plug-in for the tests: it tells whether it can go, and how often it was asked.
#include <cstdlib>
#include <stdexcept>

namespace {

enum class Answer { No, Yes, Throw };

Answer answer = Answer::No;
int asked = 0;

} // namespace

#define PLUGIN_EXPORT extern "C" __attribute__((visibility("default")))

PLUGIN_EXPORT void SetAnswer(int value) {
    answer = static_cast<Answer>(value);
}

PLUGIN_EXPORT int TimesAsked() {
    return asked;
}

#ifndef PLUGIN_WITHOUT_CAN_UNLOAD
PLUGIN_EXPORT bool CanUnload() {
    ++asked;
    if (answer == Answer::Throw)
        throw std::runtime_error("can't tell");
    return answer == Answer::Yes;
}
#endif
