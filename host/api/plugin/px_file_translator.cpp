#include <maya/MFnPlugin.h>
#include <maya/MPxFileTranslator.h>

#include <array>
#include <exception>
#include <fstream>
#include <unordered_set>

#include "host/api/plugin/plugin_record.h"
#include "host/cmd/session.h"
#include "host/scene/namespaces.h"
#include "host/workspace/workspace.h"

namespace host::api {
namespace {

using Translator = MPxFileTranslator;
using TranslatorPtr = std::shared_ptr<Translator>;

Translator::FileAccessMode& currentMode() {
  static auto mode = Translator::kUnknownAccessMode;
  return mode;
}

/// One call of a translator: says what is done, keeps the plug-in loaded, and turns what it throws
/// into a failure.
Result<void> called(PluginRecord& record, const std::string& type, Translator::FileAccessMode mode,
                    const std::function<MStatus()>& call) {
  struct Scope {
    Scope(int& countIn, Translator::FileAccessMode modeIn)
        : count(countIn), before(std::exchange(currentMode(), modeIn)) {
      ++count;
    }
    ~Scope() {
      --count;
      currentMode() = before;
    }
    Scope(const Scope&) = delete;
    Scope& operator=(const Scope&) = delete;
    int& count;
    Translator::FileAccessMode before;
  } const scope(record.entered, mode);
  (void)takeRememberedError();
  try {
    const MStatus status = call();
    if (status) return {};
    const std::string why = takeRememberedError();
    return fail("The translator '{}' failed: {}", type,
                why.empty() ? status.errorString().asChar() : why);
  } catch (const std::exception& exception) {
    return fail("The translator '{}' threw an exception: {}", type, exception.what());
  } catch (...) {
    return fail("The translator '{}' threw an exception", type);
  }
}

MFileObject fileObject(const std::string& path) {
  MFileObject file;
  file.setRawFullName(toMString(path));
  return file;
}

/// Whether a file that has the extension is of the translator's kind by its first bytes.
bool isOwn(const Translator& translator, const std::string& path) {
  std::array<char, 2048> head{};
  std::ifstream in(path, std::ios::binary);
  in.read(head.data(), static_cast<std::streamsize>(head.size()) - 1);
  const auto size = static_cast<short>(in.gcount());
  return translator.identifyFile(fileObject(path), head.data(), size) != Translator::kNotMyFileType;
}

std::string extensionOf(const Translator& translator) {
  std::string extension = toStd(translator.defaultExtension());
  if (!extension.empty() && extension[0] != '.') extension.insert(0, ".");
  for (char& c : extension) c = static_cast<char>(c >= 'A' && c <= 'Z' ? c - 'A' + 'a' : c);
  return extension;
}

/// Runs the reader and returns the nodes that came, top ones first.
Result<std::vector<dg::Node*>> readWith(const TranslatorPtr& translator, PluginRecord& record,
                                        const std::string& type, const std::string& path,
                                        const workspace::FileReadOptions& options,
                                        scene::Document& scene) {
  std::unordered_set<const dg::Node*> before;
  for (const dg::NodePtr& node : scene.graph().nodes()) before.insert(node.get());
  const auto mode = options.isImport ? Translator::kImportAccessMode : Translator::kOpenAccessMode;
  const scene::NamespaceScope space(
      scene, options.nameSpace.empty() ? scene::currentNamespace(scene) : options.nameSpace);
  HOST_TRY(called(record, type, mode, [&] {
    return translator->reader(fileObject(path), toMString(options.options), mode);
  }));
  std::vector<dg::Node*> made, below;
  for (const dg::NodePtr& node : scene.graph().nodes()) {
    if (before.contains(node.get())) continue;
    const bool isTop = scene::isDagNode(*node) && scene::firstPath(*node).length() == 1;
    (isTop ? made : below).push_back(node.get());
  }
  made.insert(made.end(), below.begin(), below.end());
  return made;
}

workspace::FileFormat formatOf(const TranslatorPtr& translator, const std::string& type,
                               const std::string& defaultOptions,
                               const std::shared_ptr<PluginRecord>& record) {
  using Placing = workspace::FileFormat::Placing;
  workspace::FileFormat format;
  format.name = type;
  format.extensions = {extensionOf(*translator)};
  const std::weak_ptr<PluginRecord> owner = record;
  if (translator->haveReadMethod())
    format.read = [=](cmd::Context&, const std::string& path,
                      const workspace::FileReadOptions& options) -> Result<Placing> {
      const auto plugin = owner.lock();
      if (!plugin) return fail("The plug-in of '{}' is not loaded", type);
      if (!options.isImport && !translator->canBeOpened())
        return fail("file: '{}' files can be imported but not opened.", type);
      const bool hasExtension = path.ends_with(extensionOf(*translator));
      if (hasExtension && !isOwn(*translator, path))
        return fail("file: \"{}\" is no file of type '{}'.", path, type);
      workspace::FileReadOptions known = options;
      if (known.options.empty()) known.options = defaultOptions;
      return Placing([=](cmd::Context& context) {
        return readWith(translator, *plugin, type, path, known, context.document);
      });
    };
  if (translator->haveWriteMethod())
    format.write = [=](cmd::Context& context, const std::string& path,
                       const workspace::FileWriteOptions& options) -> Result<void> {
      const auto plugin = owner.lock();
      if (!plugin) return fail("The plug-in of '{}' is not loaded", type);
      const auto mode = options.onlySelected                  ? Translator::kExportActiveAccessMode
                        : path == context.document.fileName() ? Translator::kSaveAccessMode
                                                              : Translator::kExportAccessMode;
      return called(*plugin, type, mode, [&] {
        const std::string& words = options.options.empty() ? defaultOptions : options.options;
        return translator->writer(fileObject(path), toMString(words), mode);
      });
    };
  return format;
}

}  // namespace
}  // namespace host::api

using namespace host;
using Kind = api::PluginRecord::Registration::Kind;

MPxFileTranslator::MPxFileTranslator() = default;
MPxFileTranslator::~MPxFileTranslator() = default;
MStatus MPxFileTranslator::reader(const MFileObject&, const MString&, FileAccessMode) {
  return MStatus::kNotImplemented;
}
MStatus MPxFileTranslator::writer(const MFileObject&, const MString&, FileAccessMode) {
  return MStatus::kNotImplemented;
}
bool MPxFileTranslator::haveReadMethod() const {
  return false;
}
bool MPxFileTranslator::haveWriteMethod() const {
  return false;
}
bool MPxFileTranslator::haveNamespaceSupport() const {
  return false;
}
bool MPxFileTranslator::haveReferenceMethod() const {
  return true;
}
bool MPxFileTranslator::allowMultipleFileOptimization() const {
  return false;
}
MString MPxFileTranslator::defaultExtension() const {
  return {};
}
MString MPxFileTranslator::filter() const {
  return "*.*";
}
bool MPxFileTranslator::canBeOpened() const {
  return true;
}
MPxFileTranslator::MFileKind MPxFileTranslator::identifyFile(const MFileObject& file, const char*,
                                                             short) const {
  const std::string name = file.rawName().asChar();
  const std::string extension = api::extensionOf(*this);
  return !extension.empty() && name.ends_with(extension) ? kCouldBeMyFileType : kNotMyFileType;
}
MPxFileTranslator::FileAccessMode MPxFileTranslator::fileAccessMode() {
  return api::currentMode();
}

MStatus MFnPlugin::registerFileTranslator(const MString& translatorName, const char*,
                                          MCreatorFunction creatorFunction, const char*,
                                          const char* defaultOptions, bool, const MString&) {
  const auto* rep = api::objectAs<api::PluginRep>(object_);
  if (!rep || !creatorFunction || translatorName.length() == 0) return MStatus::kInvalidParameter;
  auto& formats = workspace::workspaceOf(cmd::currentSession()).fileFormats;
  const std::string type = translatorName.asChar();
  if (formats.byName(type)) {
    api::rememberError(Error{"There is a file type '" + type + "' already"});
    return MStatus::kFailure;
  }
  const api::TranslatorPtr translator(static_cast<MPxFileTranslator*>(creatorFunction()));
  if (!translator) return MStatus::kFailure;
  formats.all.push_back(
      api::formatOf(translator, type, defaultOptions ? defaultOptions : "", rep->record));
  rep->record->add(Kind::Other, type, [&formats, type] {
    std::erase_if(formats.all, [&](const auto& format) { return format.name == type; });
  });
  return MStatus::kSuccess;
}

MStatus MFnPlugin::deregisterFileTranslator(const MString& translatorName) {
  const auto* rep = api::objectAs<api::PluginRep>(object_);
  return rep && rep->record->remove(Kind::Other, translatorName.asChar()) ? MStatus::kSuccess
                                                                          : MStatus::kFailure;
}
