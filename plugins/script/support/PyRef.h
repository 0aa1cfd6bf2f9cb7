#pragma once

#include "PythonApi.h"

#include <utility>

/// Owns one reference to a Python object, or none.
class PyRef
{
public:
    PyRef() = default;

    /// Takes over a new reference, which most functions of the interpreter return. Null stays null.
    static PyRef take(PyObject* object) { return PyRef(object); }

    /// Adds a reference to a borrowed object. Null stays null.
    static PyRef retain(PyObject* object)
    {
        Py_XINCREF(object);
        return PyRef(object);
    }

    PyRef(const PyRef&) = delete;
    PyRef& operator=(const PyRef&) = delete;
    PyRef(PyRef&& other) noexcept
        : m_object(other.release())
    {
    }

    // Sets the new value before it releases the old one, because a release can run any code.
    PyRef& operator=(PyRef&& other) noexcept
    {
        PyRef(std::move(other)).swap(*this);
        return *this;
    }

    ~PyRef() { Py_XDECREF(m_object); }

    /// The object; this keeps the reference.
    PyObject* get() const { return m_object; }

    /// Gives the reference to the caller, or to a function that steals it.
    [[nodiscard]] PyObject* release() { return std::exchange(m_object, nullptr); }

    void swap(PyRef& other) noexcept { std::swap(m_object, other.m_object); }

    explicit operator bool() const { return m_object != nullptr; }

private:
    explicit PyRef(PyObject* object)
        : m_object(object)
    {
    }

    PyObject* m_object = nullptr;
};
