// What the parts of the demo share: the count of proofs, and where the pictures go.
#pragma once

#include <cstdio>
#include <filesystem>
#include <string>

inline const std::filesystem::path outFolder = "out";

/// The path of a picture that is made of the file with this stem.
inline std::string OutPath(const std::string &stem, const std::string &ending) {
    return (outFolder / (stem + "_" + ending + ".bmp")).string();
}

/// Counts the proofs and gives the word for the table.
class Verdict {
public:
    const char *Note(bool holds) {
        ++(holds ? held : failed);
        return holds ? "yes" : "NO";
    }
    int Print() const {
        if (failed == 0)
            std::printf(
                "\nAll %d proofs hold: every view shows the caller's own pixels, every walk and mapping gives "
                "what a plain count gives, every transform shows the places that it should, and every search "
                "finds what a plain one finds.\n",
                held);
        else
            std::printf("\nFAILED: %d of %d proofs do not hold.\n", failed, held + failed);
        return failed == 0 && held > 0 ? 0 : 1;
    }

private:
    int held = 0;
    int failed = 0;
};
