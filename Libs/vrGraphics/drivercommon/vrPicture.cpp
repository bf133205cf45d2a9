#include "vrGraphics/drivercommon/vrPicture.h"

#include "MKLib/File/File.h"

#include <png.h>

#include <csetjmp>
#include <cstdio>
#include <utility>

namespace
{

constexpr size_t BYTES_PER_PIXEL = 4;
constexpr size_t SIGNATURE_SIZE = 8;

/// One decode. The library leaves its operations by a jump, so each function of this class that calls into it sets the
/// place to land first, and neither it nor what it calls holds anything that a destructor would have to release.
class Decoder
{
public:
    explicit Decoder(FileClass &file) : File(file)
    {
        Png = png_create_read_struct(PNG_LIBPNG_VER_STRING, this, &Decoder::On_Error, &Decoder::On_Warning);
        if (Png) Info = png_create_info_struct(Png);
    }
    Decoder(const Decoder &) = delete;
    Decoder &operator=(const Decoder &) = delete;
    ~Decoder() { png_destroy_read_struct(&Png, &Info, nullptr); }

    const char *Get_Reason() const { return Reason; }

    bool Read_Signature()
    {
        uint8_t signature[SIGNATURE_SIZE] = {};
        const int64_t count = File.Read(signature, SIGNATURE_SIZE);
        if (count == SIGNATURE_SIZE && png_sig_cmp(signature, 0, SIGNATURE_SIZE) == 0) return true;
        return Fail(count == 0 ? "the file is empty" : "not a PNG picture");
    }

    /// Reads what stands ahead of the pixels. All kinds are asked for as four bytes a pixel.
    bool Read_Header(uint32_t &width, uint32_t &height)
    {
        if (!Png || !Info) return Fail("the PNG library can't be started");
        if (setjmp(png_jmpbuf(Png))) return false;
        png_set_user_limits(Png, PNG_UINT_31_MAX, PNG_UINT_31_MAX); // ours come with a better message
        png_set_read_fn(Png, this, &Decoder::On_Read);
        png_set_sig_bytes(Png, SIGNATURE_SIZE);
        png_read_info(Png, Info);
        width = png_get_image_width(Png, Info);
        height = png_get_image_height(Png, Info);
        png_set_expand(Png);
        png_set_scale_16(Png);
        png_set_gray_to_rgb(Png);
        png_set_add_alpha(Png, 0xff, PNG_FILLER_AFTER);
        return true;
    }

    bool Read_Pixels(uint32_t height, size_t rowBytes, uint8_t *pixels)
    {
        if (setjmp(png_jmpbuf(Png))) return false;
        const int passes = png_set_interlace_handling(Png);
        png_read_update_info(Png, Info);
        if (png_get_rowbytes(Png, Info) != rowBytes) png_error(Png, "a row of an unexpected size");
        for (int pass = 0; pass < passes; ++pass)
            for (uint32_t row = 0; row < height; ++row) png_read_row(Png, pixels + row * rowBytes, nullptr);
        png_read_end(Png, nullptr); // damage behind the last row is damage too
        return true;
    }

private:
    bool Fail(const char *reason)
    {
        std::snprintf(Reason, sizeof Reason, "%s", reason);
        return false;
    }

    [[noreturn]] static void On_Error(png_structp png, png_const_charp reason)
    {
        static_cast<Decoder *>(png_get_error_ptr(png))->Fail(reason);
        png_longjmp(png, 1);
    }
    static void On_Warning(png_structp, png_const_charp) {}

    static void On_Read(png_structp png, png_bytep buffer, size_t size)
    {
        auto &file = static_cast<Decoder *>(png_get_io_ptr(png))->File;
        if (file.Read(buffer, static_cast<int64_t>(size)) != static_cast<int64_t>(size))
            png_error(png, "the file ends early");
    }

    FileClass &File;
    png_structp Png = nullptr;
    png_infop Info = nullptr;
    char Reason[128] = "";
};

} // namespace

bool vrPicture::Load(FileClass &file, std::string &error)
{
    Decoder decoder(file);
    uint32_t width = 0;
    uint32_t height = 0;
    if (!decoder.Read_Signature() || !decoder.Read_Header(width, height)) {
        error = decoder.Get_Reason();
        return false;
    }
    if (width > MAX_SIDE || height > MAX_SIDE || uint64_t(width) * height > MAX_PIXELS) {
        error = "a picture of " + std::to_string(width) + " by " + std::to_string(height) +
                " pixels is too large, expected at most " + std::to_string(MAX_SIDE) + " a side and " +
                std::to_string(MAX_PIXELS) + " in all";
        return false;
    }
    const size_t rowBytes = width * BYTES_PER_PIXEL;
    std::vector<uint8_t> pixels(rowBytes * height);
    if (!decoder.Read_Pixels(height, rowBytes, pixels.data())) {
        error = decoder.Get_Reason();
        return false;
    }
    Width = static_cast<int>(width);
    Height = static_cast<int>(height);
    Pixels = std::move(pixels);
    return true;
}

std::vector<uint8_t> vrPicture::Get_Grey() const
{
    // Rec. 709 weights in 256ths, which sum to 256, so that equal channels give their own value.
    constexpr uint32_t RED = 54;
    constexpr uint32_t GREEN = 183;
    constexpr uint32_t BLUE = 19;
    std::vector<uint8_t> grey(Pixels.size() / BYTES_PER_PIXEL);
    for (size_t index = 0; index < grey.size(); ++index) {
        const uint8_t *pixel = &Pixels[index * BYTES_PER_PIXEL];
        grey[index] = static_cast<uint8_t>((RED * pixel[0] + GREEN * pixel[1] + BLUE * pixel[2] + 128) >> 8);
    }
    return grey;
}
