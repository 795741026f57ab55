#pragma once

#include <QString>

#include <vector>

// One frame of a call stack: the function, and its source file and line where
// the build carries debugging information.
struct StackFrame {
    QString function;
    QString file; // empty when unknown
    int line = 0;
    QString address;
};

// The stack of the code running now, innermost first, without this function's own frames.
std::vector<StackFrame> CallStackHere(int skip = 0);

// The stack of the exception thrown last on this thread, taken where it was
// thrown; empty when the build cannot see throws (sanitizer builds).
std::vector<StackFrame> LastThrowStack();

// "function at file:line" or "function [address]", one line per frame.
QString FrameText(const StackFrame& frame);

// A crash record: the raw frames of the current stack, less the innermost
// `skip` of its callers, written to an open file descriptor. Safe to call
// from a signal handler.
void WriteRawStack(int fd, int skip);
// The addresses a crash record written by WriteRawStack holds.
std::vector<quintptr> ReadRawStack(const QByteArray& record);
// The frame of an address of this process.
StackFrame FrameAt(quintptr address);
