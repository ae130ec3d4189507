#ifdef _WIN32

#ifndef NOMINMAX
#define NOMINMAX
#endif
#ifndef _WIN32_WINNT
#define _WIN32_WINNT 0x0602  // pointer messages came with it
#endif
#include <windows.h>

#include "brushes/tabletHook.h"

namespace {

struct listener {
  HHOOK hook = nullptr;
  HWND window = nullptr;
  penState pen;
};

listener& current() {
  static listener one;
  return one;
}

bool isPointerMessage(UINT message) {
  return message == WM_POINTERDOWN || message == WM_POINTERUPDATE || message == WM_POINTERUP ||
         message == WM_POINTERLEAVE;
}

/// What a pen's message says; the numbers that a pen does not report keep those of a mouse.
void take(const MSG& message) {
  listener& self = current();
  const UINT32 pointer = GET_POINTERID_WPARAM(message.wParam);
  POINTER_INPUT_TYPE kind = PT_POINTER;
  POINTER_PEN_INFO info = {};
  if (!GetPointerType(pointer, &kind) || kind != PT_PEN || !GetPointerPenInfo(pointer, &info))
    return;
  self.pen = penState();
  const bool isUp = message.message == WM_POINTERUP || message.message == WM_POINTERLEAVE;
  if (isUp) return;
  constexpr double kFullPressure = 1024.0;
  if (info.penMask & PEN_MASK_PRESSURE) self.pen.pressure = info.pressure / kFullPressure;
  if (info.penMask & PEN_MASK_TILT_X) self.pen.tiltX = info.tiltX;
  if (info.penMask & PEN_MASK_TILT_Y) self.pen.tiltY = -info.tiltY;  // theirs is towards the user
}

/// Called for every message that the window's thread takes from its queue; lets all of them pass.
LRESULT CALLBACK onMessage(int code, WPARAM removal, LPARAM data) {
  if (code == HC_ACTION && removal == PM_REMOVE) {
    const MSG& message = *reinterpret_cast<const MSG*>(data);
    const bool isOurs = message.hwnd == current().window || IsChild(current().window, message.hwnd);
    if (isOurs && isPointerMessage(message.message)) take(message);
  }
  return CallNextHookEx(current().hook, code, removal, data);
}

}  // namespace

bool tabletHook::install(std::uintptr_t window, int) {
  remove();
  listener& self = current();
  self.window = reinterpret_cast<HWND>(window);
  if (!IsWindow(self.window)) return false;
  const DWORD thread = GetWindowThreadProcessId(self.window, nullptr);
  self.hook = SetWindowsHookExW(WH_GETMESSAGE, onMessage, nullptr, thread);
  return self.hook != nullptr;
}

void tabletHook::remove() {
  listener& self = current();
  if (self.hook) UnhookWindowsHookEx(self.hook);
  self = listener();
}

penState tabletHook::read() {
  return current().pen;
}

#endif
