#pragma once

#include "vrGraphics/drivercommon/vrEffectSource.h"

#include <map>
#include <string>
#include <string_view>

/// Reads the text of effects into a `vrEffectSource`, includes and all. One use each.
class vrEffectParser
{
public:
    vrEffectParser(vrEffectSource &source, vrEffectIncluder *includer) : Source(source), Includer(includer) {}

    /// False with the reason in `Get_Error`.
    bool Parse(std::string_view text, std::string_view fileName);
    const std::string &Get_Error() const { return Error; }

private:
    enum class TokenKind
    {
        End,
        Word,   ///< letters, digits and underscores, not with a digit first
        Number, ///< whatever starts like one
        String, ///< between quotes, which the text is without
        Mark    ///< one character
    };
    struct Token
    {
        TokenKind Kind = TokenKind::End;
        std::string_view Text;
        int Line = 1;
    };
    /// Where one file is read.
    struct Cursor
    {
        std::string_view Text;
        size_t Position = 0;
        int Line = 1;
        int File = 0;
    };

    // Words of one file. Each tells the error when it answers false.
    bool Parse_File(std::string_view text, std::string_view fileName);
    bool Parse_Item();
    bool Parse_Include();
    bool Parse_Annotation();
    bool Parse_Parameter();
    bool Parse_Default(vrEffectParameter &parameter);
    bool Parse_Number(float &value);
    bool Parse_Shared();
    bool Parse_Stage(vrEffectStage stage);
    bool Parse_Technique();
    bool Parse_Pass(vrEffectTechnique &technique);
    bool Parse_Pass_Item(vrEffectPass &pass);
    bool Parse_Pass_Stage(vrEffectPass &pass, vrEffectStage stage);
    bool Parse_Block(int &block);

    bool Next();
    bool Skip_Blanks();
    bool Read_String();
    void Read_Number();
    bool Take_Word(const char *what, std::string &word);
    bool Take_String(const char *what, std::string &text);
    bool Take_Mark(char mark);
    bool Is_Word(std::string_view word) const { return Current.Kind == TokenKind::Word && Current.Text == word; }
    bool Is_Mark(char mark) const { return Current.Kind == TokenKind::Mark && Current.Text[0] == mark; }
    std::string Quote_Current() const;
    bool Fail(const std::string &reason) { return Fail_At(Current.Line, reason); }
    bool Fail_At(int line, const std::string &reason);

    vrEffectSource &Source;
    vrEffectIncluder *Includer;
    std::string Error;
    Cursor Place;
    Token Current; ///< the one that is looked at
    std::map<std::string, int, std::less<>> NamedStages[2];
};
