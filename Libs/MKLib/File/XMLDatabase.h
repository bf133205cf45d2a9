#pragma once

#include "MKLib/MKString.h"

#include <cstdint>
#include <memory>
#include <string_view>

class FileClass;

/// Answers of the queries of XMLDatabase.
enum XMLResult : int
{
    S_OK = 0,
    S_MISSING = -1 ///< no document, or what was asked for isn't there; the output stays as it was
};

/// A whole XML document in memory with a cursor on one of its elements. All XML that the engine reads comes through
/// here.
///
/// Accepted is well-formed XML in UTF-8, with or without a byte-order mark, with one root element; bytes beyond ASCII
/// pass as they stand, without a check that they are UTF-8. The predefined entities, character references and CDATA
/// become text; comments and processing instructions are dropped; line ends become `\n`. Refused are: a declared
/// encoding other than UTF-8 or US-ASCII, UTF-16 and UTF-32, a NUL (as a byte or as `&#0;`), a document type
/// declaration (so that no entity is ever defined), elements nested deeper than MAX_DEPTH, and a text above MAX_SIZE
/// bytes. A refusal logs the file's name, the reason and the byte where it stands. Memory is bounded by about 17 times
/// the text. One thread at a time.
class XMLDatabase
{
public:
    static constexpr int MAX_DEPTH = 1024;
    static constexpr int64_t MAX_SIZE = 64 << 20;

    XMLDatabase();
    XMLDatabase(const XMLDatabase &) = delete;
    XMLDatabase &operator=(const XMLDatabase &) = delete;
    ~XMLDatabase();

    /// Each form drops the document before, and on success puts the cursor on the root element.
    /// From the position of an open file to its end; the file stays open and the caller's.
    bool Load(FileClass &file);
    /// By engine path, as a FileClass opens it for reading. A file that isn't there is no refusal, and logs nothing
    /// here.
    bool Load(std::string_view name);
    /// From text; `name` stands for the file in messages.
    bool Load_Text(std::string_view text, std::string_view name);

    bool Is_Loaded() const;
    int Get_Depth() const; ///< 1 on the root element, 0 without a document

    /// Moves of the cursor between elements, in document order. False leaves it where it is.
    bool Enter_First_Child();
    bool Next_Sibling();
    bool Leave(); ///< to the parent; false on the root element

    /// The element's name.
    XMLResult Get_Key(MK::String *key) const;
    bool Is_Key(std::string_view key) const;
    /// The element's own text, without that of its children; empty when it has none.
    XMLResult Get_Value(MK::String *value) const;
    XMLResult Get_Attribute(const char *name, MK::String *value) const;

private:
    struct Document;

    std::unique_ptr<Document> Loaded;
};
