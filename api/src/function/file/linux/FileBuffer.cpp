#include "api/src/function/file/linux/FileBuffer.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <new>

#include "api/src/function/log/log.h"

namespace {

void release(PQRXFileBuffer buffer)
{
    if (buffer->m_file >= 0) {
        close(buffer->m_file);
        buffer->m_file = -1;
    }
    std::free(buffer->m_data);
    buffer->m_data = nullptr;
}

// The name without its single quotes.
char* unquoted(char* name)
{
    name += std::strspn(name, "'");
    const std::size_t length = std::strlen(name);
    if (length > 0 && name[length - 1] == '\'') {
        name[length - 1] = '\0';
    }
    return name;
}

bool isRegular(int descriptor)
{
    struct stat status {};
    return fstat(descriptor, &status) == 0 && S_ISREG(status.st_mode);
}

QRX_U32 QRXFileBuffer_open_for_read(PQRXFileBuffer _this, char* name, QRX_U32 step)
{
    release(_this);
    _this->m_step_length = step;
    _this->m_offset = 0;
    _this->m_got = 0;
    if (name == nullptr) {
        return 1;
    }
    name = unquoted(name);
    add_log("open file %s.\n", name);
    _this->m_file = open(name, O_RDONLY | O_CLOEXEC | O_NONBLOCK);  // a pipe must not keep us waiting
    if (_this->m_file < 0) {
        return 1;
    }
    if (step != 0) {
        _this->m_data = static_cast<QRX_U8*>(std::calloc(step, 1));
    }
    if (!isRegular(_this->m_file) || (step != 0 && _this->m_data == nullptr)) {
        release(_this);
        return 1;
    }
    return 0;
}

QRX_U8* QRXFileBuffer_read(PQRXFileBuffer _this)
{
    _this->m_got = 0;
    if (_this->m_file < 0 || _this->m_data == nullptr) {
        return _this->m_data;
    }
    while (_this->m_got < _this->m_step_length) {
        const ssize_t got = read(_this->m_file, _this->m_data + _this->m_got, _this->m_step_length - _this->m_got);
        if (got == 0) {
            break;
        }
        if (got > 0) {
            _this->m_got += static_cast<QRX_U32>(got);
        } else if (errno != EINTR) {
            add_log("Unable to read file.\n");
            _this->m_got = 0;
            return _this->m_data;
        }
    }
    _this->m_offset += _this->m_step_length;
    return _this->m_data;
}

QRX_U32 QRXFileBuffer_get_offset(PQRXFileBuffer _this)
{
    return _this != nullptr ? _this->m_offset : 0;
}

QRX_U64 QRXFileBuffer_get_file_length(PQRXFileBuffer _this)
{
    if (_this->m_file < 0) {
        return 0;
    }
    const off_t position = lseek(_this->m_file, 0, SEEK_CUR);
    const off_t length = lseek(_this->m_file, 0, SEEK_END);
    if (position < 0 || length < 0 || lseek(_this->m_file, position, SEEK_SET) < 0) {
        add_log("firmware image file length error %ld .\n", static_cast<long>(length));
        return 0;
    }
    return static_cast<QRX_U64>(length);
}

void QRXFileBuffer_close(PQRXFileBuffer _this)
{
    release(_this);
    delete _this;
}

}  // namespace

PQRXFileBuffer CreateQRXFileBufferInstance()
{
    auto* buffer = new (std::nothrow) QRXFileBuffer{};
    if (buffer == nullptr) {
        return nullptr;
    }
    buffer->m_file = -1;
    buffer->open_for_read = QRXFileBuffer_open_for_read;
    buffer->read = QRXFileBuffer_read;
    buffer->get_offset = QRXFileBuffer_get_offset;
    buffer->get_file_length = QRXFileBuffer_get_file_length;
    buffer->close = QRXFileBuffer_close;
    return buffer;
}
