// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <map>
#include <memory>
#include <stdexcept>
#include <string>
#include <typeinfo>

namespace lumo {

/// Makes objects of classes derived from T by the name under which each class
/// was registered. Filled by one thread; afterwards any thread may create.
template <typename T>
class ExtensibleFactory
{
public:
    /// Makes a new object; `create` returns it unchecked, even if it is null.
    using Creator = std::unique_ptr<T> (*)();

    /// Registers `creator` under `key`, and replaces a creator registered before.
    /// \throws std::invalid_argument if `creator` is null
    void registerCreator(const std::string& key, Creator creator)
    {
        if (creator == nullptr) {
            throw std::invalid_argument("the creator of type (" + key + ") is null");
        }
        m_creators[key] = creator;
    }

    /// \throws std::runtime_error if the key is not registered: the run-time name
    ///     of T, " - The type (", the key, ") is not registered"
    [[nodiscard]] std::unique_ptr<T> create(const std::string& key) const
    {
        const auto found = m_creators.find(key);
        if (found == m_creators.end()) {
            throw std::runtime_error(
                std::string(typeid(T).name()) + " - The type (" + key + ") is not registered");
        }
        return found->second();
    }

private:
    std::map<std::string, Creator> m_creators;
};

/// The one factory of T in the process; specialised where T is declared.
template <typename T>
ExtensibleFactory<T>& extensibleFactoryInstance();

} // namespace lumo
