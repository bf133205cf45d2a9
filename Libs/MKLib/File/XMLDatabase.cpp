#include "MKLib/File/XMLDatabase.h"

#include "MKLib/File/File.h"
#include "MKLib/MKDebug/Logger.h"

#include <pugixml.hpp>

#include <algorithm>
#include <string>

using MKDebug::LogLevel;

namespace
{

MKDebug::Logger XMLLog("XMLDatabase");

constexpr std::string_view BYTE_ORDER_MARK = "\xef\xbb\xbf";
constexpr std::string_view BLANKS = " \t\r\n";

// A value that is nothing but blanks is a value; the line ends between elements are not.
constexpr unsigned PARSE_FLAGS = pugi::parse_cdata | pugi::parse_escapes | pugi::parse_eol |
                                 pugi::parse_wconv_attribute | pugi::parse_ws_pcdata_single;

struct Refusal
{
    const char *reason = nullptr; ///< null while there is none
    size_t offset = 0;
};

/// One pass over the text ahead of the parser, for what the parser would let pass.
class Scanner
{
public:
    explicit Scanner(std::string_view text) : Text(text) {}

    Refusal Scan()
    {
        if (const size_t nul = Text.find('\0'); nul != Text.npos) return {"it holds a NUL", nul};
        if (Text.starts_with(BYTE_ORDER_MARK)) Position = BYTE_ORDER_MARK.size();
        while (Position < Text.size() && !Found.reason) {
            if (Text[Position] == '<')
                Scan_Markup();
            else
                Scan_Text();
        }
        if (!Found.reason && Roots == 0) Refuse("it has no root element", Text.size());
        return Found;
    }

private:
    void Refuse(const char *reason, size_t offset) { Found = {reason, offset}; }

    void Scan_Text()
    {
        const size_t end = std::min(Text.find('<', Position), Text.size());
        if (Depth == 0) {
            const size_t stray = Text.find_first_not_of(BLANKS, Position);
            if (stray < end) return Refuse("text stands outside of the root element", stray);
        }
        Check_References(Position, end);
        Position = end;
    }

    void Scan_Markup()
    {
        const std::string_view rest = Text.substr(Position);
        if (rest.starts_with("<!--")) return Skip_Past("-->", 4, "a comment has no end");
        if (rest.starts_with("<![CDATA[")) return Skip_Past("]]>", 9, "a CDATA section has no end");
        if (rest.starts_with("<!")) return Refuse("document type declarations are refused", Position);
        if (rest.starts_with("<?")) return Scan_Instruction();
        Scan_Tag();
    }

    void Skip_Past(std::string_view end, size_t opening, const char *reason)
    {
        const size_t found = Text.find(end, Position + opening);
        if (found == Text.npos) return Refuse(reason, Position);
        Position = found + end.size();
    }

    void Scan_Instruction()
    {
        const size_t start = Position;
        Skip_Past("?>", 2, "a processing instruction has no end");
        if (Found.reason || !Text.substr(start).starts_with("<?xml ")) return;
        const std::string_view declaration = Text.substr(start, Position - start);
        const size_t key = declaration.find("encoding");
        const size_t open = key == declaration.npos ? key : declaration.find_first_of("\"'", key);
        if (open == declaration.npos) return;
        const size_t close = declaration.find(declaration[open], open + 1);
        if (close == declaration.npos) return Refuse("its XML declaration is malformed", start);
        const std::string_view encoding = declaration.substr(open + 1, close - open - 1);
        if (!MK::Equal_Ignoring_Case(encoding, "UTF-8") && !MK::Equal_Ignoring_Case(encoding, "US-ASCII"))
            Refuse("its encoding is neither UTF-8 nor US-ASCII", start + open);
    }

    void Scan_Tag()
    {
        const size_t start = Position;
        const bool closes = Text.substr(start).starts_with("</");
        char quote = 0;
        for (++Position; Position < Text.size(); ++Position) {
            const char c = Text[Position];
            if (quote) {
                if (c == quote) quote = 0;
            } else if (c == '"' || c == '\'') {
                quote = c;
            } else if (c == '>') {
                break;
            }
        }
        if (Position >= Text.size()) return Refuse("a tag has no end", start);
        const bool empty = Text[Position - 1] == '/';
        ++Position;
        Check_References(start, Position);
        if (closes) {
            if (Depth > 0) --Depth;
            return;
        }
        if (Depth == 0 && ++Roots > 1) return Refuse("it has more than one root element", start);
        if (Depth == XMLDatabase::MAX_DEPTH) return Refuse("its elements are nested too deeply", start);
        if (!empty) ++Depth;
    }

    /// `&#0;` in any of its spellings would end a value early.
    void Check_References(size_t start, size_t end)
    {
        const std::string_view part = Text.substr(0, end);
        while ((start = part.find("&#", start)) != part.npos) {
            size_t digit = start + 2;
            if (digit < end && part[digit] == 'x') ++digit;
            const size_t value = part.find_first_not_of('0', digit);
            if (value != part.npos && value > digit && part[value] == ';')
                return Refuse("it refers to the character NUL", start);
            start = digit;
        }
    }

    std::string_view Text;
    size_t Position = 0;
    int Depth = 0;
    int Roots = 0;
    Refusal Found;
};

bool Is_Element(const pugi::xml_node &node)
{
    return node.type() == pugi::node_element;
}

pugi::xml_node Next_Element(pugi::xml_node node)
{
    while (node && !Is_Element(node)) node = node.next_sibling();
    return node;
}

void Log_Refusal(std::string_view name, const char *reason, size_t offset)
{
    MK_LOG(XMLLog, LogLevel::Error, "XMLDatabase - %.*s is refused: %s (at byte %zu)\n", static_cast<int>(name.size()),
           name.data(), reason, offset);
}

} // namespace

struct XMLDatabase::Document
{
    std::string Text; ///< the parser works in it, and the tree points into it
    pugi::xml_document Tree;
    pugi::xml_node Cursor;
    int Depth = 1;

    bool Parse(std::string_view name)
    {
        if (const Refusal refusal = Scanner(Text).Scan(); refusal.reason) {
            Log_Refusal(name, refusal.reason, refusal.offset);
            return false;
        }
        const size_t mark = std::string_view(Text).starts_with(BYTE_ORDER_MARK) ? BYTE_ORDER_MARK.size() : 0;
        const pugi::xml_parse_result result =
            Tree.load_buffer_inplace(Text.data() + mark, Text.size() - mark, PARSE_FLAGS, pugi::encoding_utf8);
        if (!result) {
            Log_Refusal(name, result.description(), mark + static_cast<size_t>(result.offset));
            return false;
        }
        Cursor = Tree.document_element();
        return true;
    }
};

XMLDatabase::XMLDatabase() = default;
XMLDatabase::~XMLDatabase() = default;

bool XMLDatabase::Load(FileClass &file)
{
    Loaded.reset();
    const int64_t start = file.Tell();
    const int64_t size = file.Get_Size() - start;
    if (start < 0 || size < 0) return false;
    if (size > MAX_SIZE) {
        Log_Refusal(file.Get_Name(), "it is too large", MAX_SIZE);
        return false;
    }
    auto document = std::make_unique<Document>();
    document->Text.resize(static_cast<size_t>(size));
    const int64_t read = size > 0 ? file.Read(document->Text.data(), size) : 0;
    if (read != size) {
        Log_Refusal(file.Get_Name(), "it could not be read to its end", static_cast<size_t>(read > 0 ? read : 0));
        return false;
    }
    if (!document->Parse(file.Get_Name())) return false;
    Loaded = std::move(document);
    return true;
}

bool XMLDatabase::Load(std::string_view name)
{
    Loaded.reset();
    FileClass file(name);
    return file.Open(MKPlatform::FILE_OPEN_GENERIC_READ) && Load(file);
}

bool XMLDatabase::Load_Text(std::string_view text, std::string_view name)
{
    Loaded.reset();
    if (text.size() > static_cast<size_t>(MAX_SIZE)) {
        Log_Refusal(name, "it is too large", MAX_SIZE);
        return false;
    }
    auto document = std::make_unique<Document>();
    document->Text = text;
    if (!document->Parse(name)) return false;
    Loaded = std::move(document);
    return true;
}

bool XMLDatabase::Is_Loaded() const
{
    return Loaded != nullptr;
}

int XMLDatabase::Get_Depth() const
{
    return Loaded ? Loaded->Depth : 0;
}

bool XMLDatabase::Enter_First_Child()
{
    if (!Loaded) return false;
    const pugi::xml_node child = Next_Element(Loaded->Cursor.first_child());
    if (!child) return false;
    Loaded->Cursor = child;
    ++Loaded->Depth;
    return true;
}

bool XMLDatabase::Next_Sibling()
{
    if (!Loaded) return false;
    const pugi::xml_node next = Next_Element(Loaded->Cursor.next_sibling());
    if (!next) return false;
    Loaded->Cursor = next;
    return true;
}

bool XMLDatabase::Leave()
{
    if (!Loaded || Loaded->Depth <= 1) return false;
    Loaded->Cursor = Loaded->Cursor.parent();
    --Loaded->Depth;
    return true;
}

XMLResult XMLDatabase::Get_Key(MK::String *key) const
{
    if (!Loaded) return S_MISSING;
    *key = Loaded->Cursor.name();
    return S_OK;
}

bool XMLDatabase::Is_Key(std::string_view key) const
{
    return Loaded && key == Loaded->Cursor.name();
}

XMLResult XMLDatabase::Get_Value(MK::String *value) const
{
    if (!Loaded) return S_MISSING;
    value->clear();
    for (const pugi::xml_node &child : Loaded->Cursor.children())
        if (child.type() == pugi::node_pcdata || child.type() == pugi::node_cdata) value->append(child.value());
    return S_OK;
}

XMLResult XMLDatabase::Get_Attribute(const char *name, MK::String *value) const
{
    const pugi::xml_attribute attribute = Loaded ? Loaded->Cursor.attribute(name) : pugi::xml_attribute();
    if (!attribute) return S_MISSING;
    *value = attribute.value();
    return S_OK;
}
