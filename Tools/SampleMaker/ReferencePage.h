#pragma once

#include <string>

/// The page on all plugin kinds for artists: Markdown, families in the order of a layer's slots, kinds by name.
std::string Make_Reference_Page();
