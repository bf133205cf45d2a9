#include "Code/ApplicationSettings.h"

#include "Code/Application.h"
#include "MKLib/File/XMLDatabase.h"
#include "MKLib/MKDebug/Logger.h"
#include "MKPlatform/Files.h"

#include <charconv>
#include <string_view>

namespace
{

MKDebug::Logger SettingsLog("FlareTrimLog");

constexpr const char *ROOT_NAME = "ApplicationSettings";
constexpr std::string_view BLANKS = " \t\r\n";

/// Calls visit(name, field) for each field, in the order of the file; both directions go by this one list.
template <typename Settings, typename Visitor>
void Visit_Fields(Settings &settings, Visitor &&visit)
{
    visit("WorkingDirectory", settings.WorkingDirectory);
    visit("AutoCheckout", settings.AutoCheckout);
    visit("ViewMode", settings.ViewMode);
    visit("RenderAxes", settings.RenderAxes);
    visit("RenderBackground", settings.RenderBackground);
    visit("BackgroundImageName", settings.BackgroundImageName);
    visit("EnableHeat", settings.EnableHeat);
    visit("EnableBloom", settings.EnableBloom);
    visit("MainFormLocationSet", settings.MainFormLocationSet);
    visit("MainFormMaximized", settings.MainFormMaximized);
    visit("MainFormLocation", settings.MainFormLocation);
    visit("MainFormSize", settings.MainFormSize);
    visit("ViewFormLocationSet", settings.ViewFormLocationSet);
    visit("ViewFormMaximized", settings.ViewFormMaximized);
    visit("ViewFormLocation", settings.ViewFormLocation);
    visit("ViewFormSize", settings.ViewFormSize);
}

template <typename Visitor>
void Visit_Parts(Point &point, Visitor &&visit)
{
    visit("X", point.X);
    visit("Y", point.Y);
}

template <typename Visitor>
void Visit_Parts(Size &size, Visitor &&visit)
{
    visit("Width", size.Width);
    visit("Height", size.Height);
}

bool Parse(std::string_view text, bool &value)
{
    value = text == "true" || text == "1";
    return value || text == "false" || text == "0";
}

bool Parse(std::string_view text, int &value)
{
    if (text.starts_with('+')) {
        text.remove_prefix(1);
        if (text.starts_with('-')) return false;
    }
    const std::from_chars_result result = std::from_chars(text.data(), text.data() + text.size(), value);
    return result.ec == std::errc() && result.ptr == text.data() + text.size();
}

std::string_view Trim(std::string_view text)
{
    const size_t first = text.find_first_not_of(BLANKS);
    return first == text.npos ? std::string_view() : text.substr(first, text.find_last_not_of(BLANKS) - first + 1);
}

/// Moves the cursor to the first child of that name and reads it; an absent one leaves the value. False when it is
/// there and isn't of its kind.
template <typename T>
bool Read_Child(XMLDatabase &file, const char *name, T &value);

bool Read_Element(XMLDatabase &file, std::string &value)
{
    if (file.Enter_First_Child()) return false; // a text has no elements inside
    MK::String text;
    if (file.Get_Value(&text) != S_OK) return false;
    value.assign(text.data(), text.size());
    return true;
}

template <typename T>
bool Read_Element(XMLDatabase &file, T &value)
{
    if constexpr (requires { Visit_Parts(value, [](const char *, int &) {}); }) {
        bool well = true;
        Visit_Parts(value, [&](const char *name, int &part) { well = well && Read_Child(file, name, part); });
        return well;
    } else {
        std::string text;
        return Read_Element(file, text) && Parse(Trim(text), value);
    }
}

template <typename T>
bool Read_Child(XMLDatabase &file, const char *name, T &value)
{
    if (!file.Enter_First_Child()) return true;
    bool found = file.Is_Key(name);
    while (!found && file.Next_Sibling()) found = file.Is_Key(name);
    const bool well = !found || Read_Element(file, value);
    return file.Leave() && well;
}

std::string Escape(std::string_view text)
{
    std::string escaped;
    for (const char c : text) {
        switch (c) {
        case '&': escaped += "&amp;"; break;
        case '<': escaped += "&lt;"; break;
        case '>': escaped += "&gt;"; break;
        case '\r': escaped += "&#xD;"; break; // a reader makes every bare line end a line feed
        default: escaped += c;
        }
    }
    return escaped;
}

class Writer
{
public:
    std::string Text = std::string("<?xml version=\"1.0\" encoding=\"utf-8\"?>\n<") + ROOT_NAME +
                       " xmlns:xsi=\"http://www.w3.org/2001/XMLSchema-instance\""
                       " xmlns:xsd=\"http://www.w3.org/2001/XMLSchema\">\n";

    void operator()(const char *name, const std::string &value)
    {
        Text += value.empty() ? Indent + "<" + name + " />\n" : Element(name, Escape(value));
    }
    void operator()(const char *name, bool value) { Text += Element(name, value ? "true" : "false"); }
    void operator()(const char *name, int value) { Text += Element(name, std::to_string(value)); }
    template <typename T>
    void operator()(const char *name, T value)
    {
        Text += Indent + "<" + name + ">\n";
        Indent += "  ";
        Visit_Parts(value, *this);
        Indent.resize(Indent.size() - 2);
        Text += Indent + "</" + name + ">\n";
    }

private:
    std::string Element(const char *name, const std::string &value) const
    {
        return Indent + "<" + name + ">" + value + "</" + name + ">\n";
    }

    std::string Indent = "  ";
};

bool Write_File(const std::string &path, const std::string &text)
{
    int error = 0;
    const MKPlatform::FileHandle file = MKPlatform::File_Open(path, MKPlatform::FILE_OPEN_GENERIC_WRITE, &error);
    if (file == MKPlatform::INVALID_FILE) {
        MK_LOG(SettingsLog, MKDebug::LogLevel::Error, "%s can't be written: %s", path.c_str(),
               MKPlatform::Error_Text(error).c_str());
        return false;
    }
    const int64_t size = static_cast<int64_t>(text.size());
    const bool written = MKPlatform::File_Write(file, text.data(), size, &error) == size;
    const bool closed = MKPlatform::File_Close(file, written ? &error : nullptr);
    if (written && closed) return true;
    MK_LOG(SettingsLog, MKDebug::LogLevel::Error, "%s can't be written in full: %s", path.c_str(),
           MKPlatform::Error_Text(error).c_str());
    return false;
}

} // namespace

ApplicationSettings::ApplicationSettings() : WorkingDirectory(MKPlatform::Absolute_Path("..\\"))
{
}

ApplicationSettings ApplicationSettings::Load(const std::string &path)
{
    XMLDatabase file;
    if (!MKPlatform::File_Exists(path) || !file.Load(path) || !file.Is_Key(ROOT_NAME)) return {};
    ApplicationSettings settings;
    bool well = true;
    Visit_Fields(settings, [&](const char *name, auto &field) { well = well && Read_Child(file, name, field); });
    return well ? settings : ApplicationSettings();
}

void ApplicationSettings::Save(const std::string &path) const
{
    Writer writer;
    Visit_Fields(*this, writer);
    writer.Text += std::string("</") + ROOT_NAME + ">\n";
    if (Write_File(path, writer.Text)) return;
    Application::Get_Instance().Show_Message_Box("Unable to save settings file " + path + "!", "Flare Trim Error",
                                                 MessageBoxButtons::OK, MessageBoxIcon::Error);
}
