// ConnectionSetup: the connection component the tool works through, configured from a form file
// and the command line (tools layer).
#pragma once

#include <memory>

#include "ConnectionOptions.h"
#include "TCTConnection.h"

namespace ctt {

/// Owns one TCTConnection, inactive and configured:
/// 1. Without a form file: a new connection with the component's defaults.
///    With `FormFile`: the form is read with the framework's form reader (its root class, and
///    every class in it, must be registered: a connection, or a component holding one). The
///    connection is the component named `FormComponent` (the root or one of its components), or
///    without a name the root when it is a connection, else the root's first connection.
/// 2. Every setting given in `options` is set on it, over the form's value. A connection the form
///    activated is deactivated first, so that the settings that need an inactive connection can
///    be set; it is activated again when a table opens.
/// Errors: a form file that cannot be read or parsed, or holds a class that is not registered:
/// ToolError(kExitFile) "form file F: <reader's message>"; a form without the connection asked
/// for: UsageError; an activation failure of the form's connection: the component's exception.
class ConnectionSetup {
 public:
  explicit ConnectionSetup(const ConnectionOptions& options);

  /// The configured connection, alive as long as this object.
  Ctdb::TCTConnection& Connection() const { return *FConnection; }

 private:
  std::unique_ptr<fw::TComponent> FRoot;  // the connection itself, or the form's root owning it
  Ctdb::TCTConnection* FConnection = nullptr;
};

}  // namespace ctt
