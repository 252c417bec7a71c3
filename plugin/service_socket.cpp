#include "service_socket.h"

#include <arpa/inet.h>
#include <fcntl.h>
#include <netinet/in.h>
#include <sys/socket.h>

#include "nevo_service.h"
#include "sigpipe_guard.h"

UniqueFd openServiceSocket() {
    UniqueFd service(socket(AF_INET, SOCK_STREAM, 0));
    if (service) fcntl(service.get(), F_SETFD, FD_CLOEXEC);
    return service;
}

bool connectToService(const UniqueFd& service) {
    sockaddr_in address = {};
    address.sin_family = AF_INET;
    address.sin_port = htons(nevo::kPort);
    address.sin_addr.s_addr = inet_addr(nevo::kAddress);
    return connect(service.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0;
}

ssize_t writeToService(const UniqueFd& service, const void* block, size_t size) {
    const SigpipeGuard guard(service.get());
    return write(service.get(), block, size);
}
