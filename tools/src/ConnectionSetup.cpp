// ConnectionSetup: form file first, command line over it (tools layer).
#include "ConnectionSetup.h"

#include "Exception.h"
#include "StringUtils.h"
#include "TClassInfo.h"
#include "TReader.h"
#include "ToolError.h"

namespace ctt {

namespace {

Ctdb::TCTConnection* FindConnection(fw::TComponent& root, const ConnectionOptions& options) {
  const std::string& name = options.FormComponent;
  if (!name.empty()) {
    fw::TComponent* found = fw::SameText(root.Name(), name) ? &root : root.FindComponent(name);
    if (!found) throw UsageError("form file " + options.FormFile + " has no component named '" + name + "'");
    auto* connection = dynamic_cast<Ctdb::TCTConnection*>(found);
    if (!connection)
      throw UsageError("component '" + name + "' of form file " + options.FormFile + " is a " +
                       found->ClassType().ClassName() + ", not a TCTConnection");
    return connection;
  }
  if (auto* connection = dynamic_cast<Ctdb::TCTConnection*>(&root)) return connection;
  for (int i = 0; i < root.ComponentCount(); ++i)
    if (auto* connection = dynamic_cast<Ctdb::TCTConnection*>(root.Components(i))) return connection;
  throw UsageError("form file " + options.FormFile + " holds no TCTConnection");
}

}  // namespace

ConnectionSetup::ConnectionSetup(const ConnectionOptions& options) {
  if (options.FormFile.empty()) {
    FRoot = std::make_unique<Ctdb::TCTConnection>(nullptr);
    FConnection = static_cast<Ctdb::TCTConnection*>(FRoot.get());
  } else {
    try {
      FRoot.reset(fw::ReadComponentFile(options.FormFile));
    } catch (const fw::EParserError& e) {
      throw ToolError(kExitFile, "form file " + options.FormFile + ": " + e.Message());
    } catch (const fw::EInOutError& e) {
      throw ToolError(kExitFile, "form file " + options.FormFile + ": " + e.Message());
    } catch (const fw::EComponentError& e) {
      throw ToolError(kExitFile, "form file " + options.FormFile + ": " + e.Message());
    }
    FConnection = FindConnection(*FRoot, options);
  }
  Ctdb::TCTConnection& c = *FConnection;
  c.SetActive(false);
  if (options.Alignment) c.SetLoadAlignment(*options.Alignment);
  if (options.NullKeys) c.SetNullKeys(*options.NullKeys);
  if (options.MaxBuffers) c.SetMaxBuffers(*options.MaxBuffers);
  if (options.MaxFiles) c.SetMaxFiles(*options.MaxFiles);
  if (options.MaxSectors) c.SetMaxSectors(*options.MaxSectors);
  if (options.UserName) c.SetUserName(*options.UserName);
  if (options.Password) c.SetPassword(*options.Password);
  if (options.ServerName) c.SetServerName(*options.ServerName);
  if (options.DataDir) c.SetDataDir(*options.DataDir);
  if (options.TempDir) c.SetTempDir(*options.TempDir);
  if (options.MaxIndexKey) c.SetMaxIndexKey(*options.MaxIndexKey);
  if (options.DataExt) c.SetDataExt(*options.DataExt);
  if (options.IndexExt) c.SetIndexExt(*options.IndexExt);
  if (options.SuperFileExt) c.SetSuperFileExt(*options.SuperFileExt);
}

}  // namespace ctt
