#pragma once

#include <maya/MMessage.h>
#include <maya/MTypes.h>

/// Registers callbacks for the command lines that run and for what they say.
class MCommandMessage : public MMessage {
 public:
  enum MessageType {
    kHistory,  ///< a command line, as it is echoed
    kDisplay,  ///< what a script prints
    kInfo,
    kWarning,
    kError,
    kResult,
    kStackTrace
  };
  typedef void (*MMessageFunction)(const MString& message, MessageType messageType,
                                   void* clientData);
  typedef void (*MMessageFilterFunction)(const MString& message, MessageType messageType,
                                         bool& filterOutput, void* clientData);

  /// Told of each line that a person, a file or a plug-in runs, before it runs. What procedures in
  /// it call is not told one by one.
  static MCallbackId addCommandCallback(MStringFunction func, void* clientData = nullptr,
                                        MStatus* status = nullptr);
  /// Told of everything that is said. What the callback says itself is not told again.
  static MCallbackId addCommandOutputCallback(MMessageFunction func, void* clientData = nullptr,
                                              MStatus* status = nullptr);
  /// The same, and sets `filterOutput` to keep a message from being shown.
  static MCallbackId addCommandOutputFilterCallback(MMessageFilterFunction func,
                                                    void* clientData = nullptr,
                                                    MStatus* status = nullptr);
};
