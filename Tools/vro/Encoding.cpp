#include "vro/Commands.h"

#include "MKLib/ChunkFile/ChunkTypes.h"

#include <cstdio>
#include <string_view>

namespace vro
{

std::optional<unsigned> Parse_Encoding(const std::string &text)
{
    using namespace ChunkFile;
    constexpr struct
    {
        std::string_view Name;
        unsigned Mode;
    } ENCODINGS[] = {{"zlib", COMPRESSION_ZLIB},
                     {"binary", COMPRESSION_NONE},
                     {"xml", COMPRESSION_XML},
                     {"sectioned", COMPRESSION_NONE | MODE_SECTIONED},
                     {"zlib-sectioned", COMPRESSION_ZLIB | MODE_SECTIONED}};

    std::string_view rest = text;
    const std::string_view base = rest.substr(0, rest.find('+'));
    rest.remove_prefix(base.size());
    for (const auto &encoding : ENCODINGS) {
        if (encoding.Name != base) continue;
        unsigned mode = encoding.Mode;
        while (!rest.empty()) {
            const std::string_view option = rest.substr(0, rest.find('+', 1));
            rest.remove_prefix(option.size());
            const unsigned bit = option == "+validated" ? MODE_VALIDATED : option == "+swapped" ? MODE_SWAPPED : 0u;
            if (bit == 0 || (mode & bit) != 0) return std::nullopt;
            mode |= bit;
        }
        return mode;
    }
    return std::nullopt;
}

int Fail(const std::string &what, const std::string &reason)
{
    std::fflush(stdout);
    std::fprintf(stderr, "vro: %s: %s\n", what.c_str(), reason.c_str());
    return EXIT_BAD_DATA;
}

} // namespace vro
