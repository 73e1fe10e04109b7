#pragma once

#include <span>

#include "framework/VokTarnOperatorTable.h"
#include "tarn/Diagnostic.h"
#include "tarn/Model.h"

namespace tarn {

// No row of the operator takes operands of these types; the rows that exist are in the notes.
ModelError MakeOperatorError(const VokTarnOperatorTable& table, const Word& name, std::span<const VokTarnType> types);

// No cast leads from the type to the one that the node names; the casts that exist are in the notes.
ModelError MakeCastError(const VokTarnOperatorTable& table, const Node& node, VokTarnType from);

// The text of the node is neither a variable nor a value of any type; a name that is spelled nearly so is proposed.
ModelError MakeLiteralError(const Model& model, const Node& node);

}  // namespace tarn
