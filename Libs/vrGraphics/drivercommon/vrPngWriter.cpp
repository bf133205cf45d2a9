#include "vrGraphics/drivercommon/vrPngWriter.h"

#include "MKLib/File/File.h"

#include <png.h>

#include <csetjmp>

namespace
{

/// One encode; see the decoder of `vrPicture` for the jumps.
class Encoder
{
public:
    explicit Encoder(FileClass &file) : File(file)
    {
        Png = png_create_write_struct(PNG_LIBPNG_VER_STRING, this, &Encoder::On_Error, &Encoder::On_Warning);
        if (Png) Info = png_create_info_struct(Png);
    }
    Encoder(const Encoder &) = delete;
    Encoder &operator=(const Encoder &) = delete;
    ~Encoder() { png_destroy_write_struct(&Png, &Info); }

    const std::string &Get_Reason() const { return Reason; }

    bool Write(uint32_t width, uint32_t height, const uint8_t *rgba)
    {
        if (!Png || !Info) {
            Reason = "the PNG library can't be started";
            return false;
        }
        if (setjmp(png_jmpbuf(Png))) return false;
        png_set_write_fn(Png, this, &Encoder::On_Write, &Encoder::On_Flush);
        png_set_IHDR(Png, Info, width, height, 8, PNG_COLOR_TYPE_RGB_ALPHA, PNG_INTERLACE_NONE,
                     PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
        png_write_info(Png, Info);
        for (size_t row = 0; row < height; ++row) png_write_row(Png, rgba + row * width * 4);
        png_write_end(Png, nullptr);
        return true;
    }

private:
    [[noreturn]] static void On_Error(png_structp png, png_const_charp reason)
    {
        static_cast<Encoder *>(png_get_error_ptr(png))->Reason = reason;
        png_longjmp(png, 1);
    }
    static void On_Warning(png_structp, png_const_charp) {}
    static void On_Flush(png_structp) {}

    static void On_Write(png_structp png, png_bytep bytes, size_t size)
    {
        auto &file = static_cast<Encoder *>(png_get_io_ptr(png))->File;
        if (file.Write(bytes, static_cast<int64_t>(size)) != static_cast<int64_t>(size))
            png_error(png, "the file can't be written");
    }

    FileClass &File;
    png_structp Png = nullptr;
    png_infop Info = nullptr;
    std::string Reason;
};

} // namespace

bool Write_Png(FileClass &file, int width, int height, const uint8_t *rgba, std::string &error)
{
    if (width <= 0 || height <= 0) {
        error = "a picture of " + std::to_string(width) + " by " + std::to_string(height) + " pixels can't be written";
        return false;
    }
    Encoder encoder(file);
    if (encoder.Write(static_cast<uint32_t>(width), static_cast<uint32_t>(height), rgba)) return true;
    error = encoder.Get_Reason();
    return false;
}
