#include <KVersion.h>
#include <KorvelAccessLibrary.h>

#include <iostream>
#include <stdexcept>

static_assert(KORVEL_VERSION_NUMBER >= 10000 && sizeof KORVEL_VERSION >= sizeof "1.0.0");

/// Catches what the library throws, by type and across the library's border.
int main() {
    Korvel::KAccessLayer::GlobalInit();
    int faults = 0;
    {
        Korvel::KAccessLayer layer;
        std::string nobody = "127.0.0.1:1";
        std::string key = "key";
        try {
            layer.ValidateArray(nobody, key);
            ++faults;
        } catch (const Korvel::KException& error) {
            faults += std::string(error.ErrorText()) == "Failed to perform curl action" ? 0 : 1;
        }
        try {
            key.clear();
            layer.ValidateArray(nobody, key);
            ++faults;
        } catch (const std::invalid_argument& error) {
            faults += std::string(error.what()) == "KAccessLayer::ValidateArray - Invalid input" ? 0 : 1;
        }
    }
    Korvel::KAccessLayer::GlobalCleanup();
    std::cout << (faults == 0 ? "the library answers as installed" : "the library does not answer as it should")
              << '\n';
    return faults;
}
