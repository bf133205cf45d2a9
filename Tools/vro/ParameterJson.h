#pragma once

#include "vro/JsonReading.h"

#include "MKLib/Parameters/ParametersFwd.h"

#include <string_view>

namespace vro
{

/// How the bytes of texts became the document's UTF-8. Texts that aren't UTF-8 are told as Windows-1252, and the
/// document names their places, so that a build writes the same bytes.
class TextPlaces
{
public:
    Json To_Json(std::string_view bytes, const std::string &pointer);
    std::string To_Bytes(const Json &value, const std::string &pointer) const;

    /// The list of places as the document holds it, and back; a place in it that held no text is an error.
    Json Windows1252_List() const;
    void Read_Windows1252_List(const Json &list, const std::string &pointer);
    void Refuse_Unused() const;

private:
    std::set<std::string> Windows1252;
    mutable std::set<std::string> Used;
};

/// The value of a parameter in the form that the effect JSON gives to its kind.
Json Value_To_Json(const ParameterClass &parameter, const std::string &pointer, TextPlaces &texts);
/// Sets the value. Throws JsonError for a value of another form.
void Value_From_Json(ParameterClass &parameter, const Json &value, const std::string &pointer, const TextPlaces &texts);

/// { "id", "name", "kind", "value" }.
Json Parameter_To_Json(const ParameterClass &parameter, const std::string &pointer, TextPlaces &texts);
/// Finds the parameter that an entry names, by id or name, and sets it. Returns its index in the list.
int Parameter_From_Json(ParameterListClass &parameters, const Json &entry, const std::string &pointer,
                        const TextPlaces &texts);

} // namespace vro
