#include "SmallStack.h"

#include <pthread.h>
#include <stdexcept>

namespace quillery::testing_support {

void runOnSmallStack(const std::function<void()>& task) {
    pthread_attr_t attributes;
    pthread_attr_init(&attributes);
    pthread_attr_setstacksize(&attributes, kSmallStack);
    pthread_t thread;
    auto body = [](void* argument) -> void* {
        (*static_cast<const std::function<void()>*>(argument))();
        return nullptr;
    };
    const int error =
        pthread_create(&thread, &attributes, body, const_cast<std::function<void()>*>(&task));
    pthread_attr_destroy(&attributes);
    if (error != 0)
        throw std::runtime_error("no thread for a small stack");
    pthread_join(thread, nullptr);
}

} // namespace quillery::testing_support
