#include "ErrorCopy.h"

#include "InterpreterSymbol.h"
#include "process/UnwrittenErrors.h"

#include <cstddef>

namespace {

using Object = void; ///< an object of the interpreter
using Size = std::ptrdiff_t;

/// The interpreter's description of a method, which is the same in all versions.
struct Method {
    const char* name;
    Object* (*function)(Object*, Object*);
    int flags;
    const char* documentation;
};
constexpr int takesTuple = 1;

struct Interpreter {
    void (*release)(Object*) = interpreterFunction<void(Object*)>("Py_DecRef");
    void (*clear)() = interpreterFunction<void()>("PyErr_Clear");
    Object* (*attribute)(Object*,
                         const char*) = interpreterFunction<Object*(Object*, const char*)>("PyObject_GetAttrString");
    int (*setAttribute)(Object*, const char*,
                        Object*) = interpreterFunction<int(Object*, const char*, Object*)>("PyObject_SetAttrString");
    Object* (*makeMethod)(Object*, Method*) = interpreterFunction<Object*(Object*, Method*)>("PyDescr_NewMethod");
    Object* (*call)(Object*, Object*) = interpreterFunction<Object*(Object*, Object*)>("PyObject_CallObject");
    Object* (*makeTuple)(Size, ...) = interpreterFunction<Object*(Size, ...)>("PyTuple_Pack");
    Object* (*join)(Object*, Object*) = interpreterFunction<Object*(Object*, Object*)>("PySequence_Concat");
    Object* (*item)(Object*, Size) = interpreterFunction<Object*(Object*, Size)>("PyTuple_GetItem");
    Object* (*stream)(const char*) = interpreterFunction<Object*(const char*)>("PySys_GetObject");
    Object* (*asBytes)(Object*) = interpreterFunction<Object*(Object*)>("PyUnicode_AsUTF8String");
    int (*bytes)(Object*, char**, Size*) = interpreterFunction<int(Object*, char**, Size*)>("PyBytes_AsStringAndSize");

    bool isThere() const
    {
        return release && clear && attribute && setAttribute && makeMethod && call && makeTuple && join && item &&
               stream && asBytes && bytes;
    }
};

const Interpreter* python = nullptr;
Object* theWrite = nullptr; ///< the method that was replaced

void copy(Object* text)
{
    Object* encoded = python->asBytes(text);
    char* bytes = nullptr;
    Size size = 0;
    if (encoded && python->bytes(encoded, &bytes, &size) == 0)
        UnwrittenErrors::add(bytes, std::size_t(size));
    python->clear();
    python->release(encoded);
}

Object* writeAndCopy(Object* self, Object* arguments)
{
    Object* first = python->makeTuple(1, self);
    Object* all = first ? python->join(first, arguments) : nullptr;
    Object* result = all ? python->call(theWrite, all) : nullptr;
    if (result && python->stream("stderr") == self)
        copy(python->item(arguments, 0));
    python->release(all);
    python->release(first);
    return result;
}

} // namespace

void ErrorCopy::copyWritesOf(void* type) noexcept
{
    static const Interpreter functions;
    static Method method = {"write", writeAndCopy, takesTuple, "sys.stdout.write"};
    if (!functions.isThere() || theWrite)
        return;
    python = &functions;
    theWrite = python->attribute(type, "write");
    Object* replacement = theWrite ? python->makeMethod(type, &method) : nullptr;
    if (replacement)
        python->setAttribute(type, "write", replacement);
    // When the interpreter ends, the plugin writes the text.
    if (const auto atEnd = interpreterFunction<int(void (*)())>("Py_AtExit"))
        atEnd(UnwrittenErrors::forget);
    python->clear();
    python->release(replacement);
}
