// Holds the type library's enumerations to the library's own, number by number, at compile time.
#include "KespCommObj.h"
#include "support/enumerations.h"
#include "support/error_numbers.h"

namespace kesp {

namespace {

template <class A, class B>
constexpr bool Same(A a, B b) {
  return static_cast<long>(a) == static_cast<long>(b);
}

static_assert(Same(::csNone, ECommStyle::csNone));
static_assert(Same(::csRS232, ECommStyle::csRS232));
static_assert(Same(::csTCPIP, ECommStyle::csTCPIP));
static_assert(Same(::csIEEE, ECommStyle::csIEEE));

static_assert(Same(::cfrSuccess, ECommError::cfrSuccess));
static_assert(Same(::cfrInvalidSetting, ECommError::cfrInvalidSetting));
static_assert(Same(::cfrWriteFailed, ECommError::cfrWriteFailed));
static_assert(Same(::cfrReadFailed, ECommError::cfrReadFailed));
static_assert(Same(::cfrTimeout, ECommError::cfrTimeout));
static_assert(Same(::cfrInvalidData, ECommError::cfrInvalidData));
static_assert(Same(::cfrOtherError, ECommError::cfrOtherError));
static_assert(Same(::cfrInvalidBoardIndex, ECommError::cfrInvalidBoardIndex));
static_assert(Same(::cfrInvalidPrimaryAddress, ECommError::cfrInvalidPrimaryAddress));
static_assert(Same(::cfrInvalidSecondaryAddress, ECommError::cfrInvalidSecondaryAddress));
static_assert(Same(::cfrInitializeFailed, ECommError::cfrInitializeFailed));
static_assert(Same(::cfrInvalidIPAddress, ECommError::cfrInvalidIPAddress));
static_assert(Same(::cfrInvalidPort, ECommError::cfrInvalidPort));
static_assert(Same(::cfrNoConnection, ECommError::cfrNoConnection));

static_assert(Same(::imText, EInputMode::imText));
static_assert(Same(::imBinary, EInputMode::imBinary));

static_assert(Same(::dlSCPIOnly, EDetectLevel::dlSCPIOnly));
static_assert(Same(::dlCommonCommands, EDetectLevel::dlCommonCommands));
static_assert(Same(::dlAllCommands, EDetectLevel::dlAllCommands));

static_assert(Same(::soFindFirst, ESearchOption::soFindFirst));
static_assert(Same(::soFindNext, ESearchOption::soFindNext));

static_assert(Same(::ecfShowRS232ExtendedTab, EEditCommFlags::ecfShowRS232ExtendedTab));
static_assert(Same(::ecfShowRS232SmartSwitchTab, EEditCommFlags::ecfShowRS232SmartSwitchTab));
static_assert(Same(::ecfShowRS232IRDongle, EEditCommFlags::ecfShowRS232IRDongle));
static_assert(Same(::ecfShowTCPExtendedTab, EEditCommFlags::ecfShowTCPExtendedTab));

static_assert(Same(::brNone, EKespBaudRate3::brNone));
static_assert(Same(::br150, EKespBaudRate3::br150));
static_assert(Same(::br300, EKespBaudRate3::br300));
static_assert(Same(::br600, EKespBaudRate3::br600));
static_assert(Same(::br1200, EKespBaudRate3::br1200));
static_assert(Same(::br2400, EKespBaudRate3::br2400));
static_assert(Same(::br4800, EKespBaudRate3::br4800));
static_assert(Same(::br9600, EKespBaudRate3::br9600));
static_assert(Same(::br19200, EKespBaudRate3::br19200));
static_assert(Same(::br38400, EKespBaudRate3::br38400));
static_assert(Same(::br57600, EKespBaudRate3::br57600));
static_assert(Same(::br115200, EKespBaudRate3::br115200));
static_assert(Same(::br230400, EKespBaudRate3::br230400));
static_assert(Same(::br460800, EKespBaudRate3::br460800));
static_assert(Same(::br921600, EKespBaudRate3::br921600));

static_assert(Same(::DATA_4BITS, EKespDataBits3::DATA_4BITS));
static_assert(Same(::DATA_5BITS, EKespDataBits3::DATA_5BITS));
static_assert(Same(::DATA_6BITS, EKespDataBits3::DATA_6BITS));
static_assert(Same(::DATA_7BITS, EKespDataBits3::DATA_7BITS));
static_assert(Same(::DATA_8BITS, EKespDataBits3::DATA_8BITS));

static_assert(Same(::STOP_1BIT, EKespStopBits3::STOP_1BIT));
static_assert(Same(::STOP_1_5BITS, EKespStopBits3::STOP_1_5BITS));
static_assert(Same(::STOP_2BITS, EKespStopBits3::STOP_2BITS));

static_assert(Same(::PARITY_NONE, EKespParity3::PARITY_NONE));
static_assert(Same(::PARITY_EVEN, EKespParity3::PARITY_EVEN));
static_assert(Same(::PARITY_ODD, EKespParity3::PARITY_ODD));
static_assert(Same(::PARITY_MARK, EKespParity3::PARITY_MARK));
static_assert(Same(::PARITY_SPACE, EKespParity3::PARITY_SPACE));

static_assert(Same(::CS_KESP, EKespControllerStyle3::CS_KESP));
static_assert(Same(::CS_OMEGA, EKespControllerStyle3::CS_OMEGA));
static_assert(Same(::CS_PRECIDIA, EKespControllerStyle3::CS_PRECIDIA));
static_assert(Same(::CS_MAXSTREAM, EKespControllerStyle3::CS_MAXSTREAM));

static_assert(Same(::ssBB4port, ESmartSwitchStyle3::ssBB4port));
static_assert(Same(::ssBB8port, ESmartSwitchStyle3::ssBB8port));
static_assert(Same(::ssBB6port, ESmartSwitchStyle3::ssBB6port));

static_assert(Same(::toNone, ETimeOutSecs::toNone));
static_assert(Same(::to10us, ETimeOutSecs::to10us));
static_assert(Same(::to30us, ETimeOutSecs::to30us));
static_assert(Same(::to100us, ETimeOutSecs::to100us));
static_assert(Same(::to300us, ETimeOutSecs::to300us));
static_assert(Same(::to1ms, ETimeOutSecs::to1ms));
static_assert(Same(::to3ms, ETimeOutSecs::to3ms));
static_assert(Same(::to10ms, ETimeOutSecs::to10ms));
static_assert(Same(::to30ms, ETimeOutSecs::to30ms));
static_assert(Same(::to100ms, ETimeOutSecs::to100ms));
static_assert(Same(::to300ms, ETimeOutSecs::to300ms));
static_assert(Same(::to1s, ETimeOutSecs::to1s));
static_assert(Same(::to3s, ETimeOutSecs::to3s));
static_assert(Same(::to10s, ETimeOutSecs::to10s));
static_assert(Same(::to30s, ETimeOutSecs::to30s));
static_assert(Same(::to100s, ETimeOutSecs::to100s));
static_assert(Same(::to300s, ETimeOutSecs::to300s));
static_assert(Same(::to1000s, ETimeOutSecs::to1000s));

static_assert(Same(::sckClosed, EKespTCPState::sckClosed));
static_assert(Same(::sckOpen, EKespTCPState::sckOpen));
static_assert(Same(::sckListening, EKespTCPState::sckListening));
static_assert(Same(::sckConnectionPending, EKespTCPState::sckConnectionPending));
static_assert(Same(::sckResolvingHost, EKespTCPState::sckResolvingHost));
static_assert(Same(::sckHostResolved, EKespTCPState::sckHostResolved));
static_assert(Same(::sckConnecting, EKespTCPState::sckConnecting));
static_assert(Same(::sckConnected, EKespTCPState::sckConnected));
static_assert(Same(::sckClosing, EKespTCPState::sckClosing));
static_assert(Same(::sckError, EKespTCPState::sckError));

static_assert(Same(::sckTCPProtocol, EKespProtocol::sckTCPProtocol));
static_assert(Same(::sckUDPProtocol, EKespProtocol::sckUDPProtocol));

static_assert(Same(::ipStatic, EIPType::ipStatic));
static_assert(Same(::ipDynamic, EIPType::ipDynamic));

static_assert(Same(::ERR_SYSTEM_ERROR, kesp::ERR_SYSTEM_ERROR));

static_assert(Same(::ERR_COMM_STYLE_NOT_SUPPORTED, comm_obj_error::ERR_COMM_STYLE_NOT_SUPPORTED));
static_assert(Same(::ERR_NO_COMM_OBJECT, comm_obj_error::ERR_NO_COMM_OBJECT));
static_assert(Same(::ERR_INVALID_COM_PORT, comm_obj_error::ERR_INVALID_COM_PORT));
static_assert(Same(::ERR_ADDRESS_NOT_SPECIFIED, comm_obj_error::ERR_ADDRESS_NOT_SPECIFIED));

static_assert(Same(::COMPORT3_ERR_INVALID_COM_PORT, com_port_error::ERR_INVALID_COM_PORT));
static_assert(Same(::ERR_INVALID_TIMEOUT, com_port_error::ERR_INVALID_TIMEOUT));
static_assert(Same(::ERR_INVALID_BAUD_RATE, com_port_error::ERR_INVALID_BAUD_RATE));
static_assert(Same(::ERR_BAUD_RATE_NOT_SUPPORTED, com_port_error::ERR_BAUD_RATE_NOT_SUPPORTED));
static_assert(Same(::COMPORT3_ERR_ADDRESS_NOT_SPECIFIED, com_port_error::ERR_ADDRESS_NOT_SPECIFIED));
static_assert(Same(::ERR_READ_TIMEOUT, com_port_error::ERR_READ_TIMEOUT));
static_assert(Same(::ERR_INVALID_CHARACTERS, com_port_error::ERR_INVALID_CHARACTERS));
static_assert(Same(::ERR_DOWNLOAD_TIMEOUT, com_port_error::ERR_DOWNLOAD_TIMEOUT));

static_assert(Same(::ERR_INVALID_PRIMARY_ADDRESS, ieee_error::ERR_INVALID_PRIMARY_ADDRESS));
static_assert(Same(::ERR_INVALID_SECONDARY_ADDRESS, ieee_error::ERR_INVALID_SECONDARY_ADDRESS));
static_assert(Same(::ERR_INVALID_BOARD_INDEX, ieee_error::ERR_INVALID_BOARD_INDEX));
static_assert(Same(::ERR_INVALID_DEVICE, ieee_error::ERR_INVALID_DEVICE));
static_assert(Same(::ERR_IBDEV, ieee_error::ERR_IBDEV));
static_assert(Same(::ERR_IBCLR, ieee_error::ERR_IBCLR));
static_assert(Same(::ERR_IBEOS, ieee_error::ERR_IBEOS));
static_assert(Same(::ERR_IBWRT, ieee_error::ERR_IBWRT));
static_assert(Same(::ERR_IBRD, ieee_error::ERR_IBRD));
static_assert(Same(::ERR_IBONL, ieee_error::ERR_IBONL));

static_assert(Same(::ERR_INVALID_IP_ADDRESS, tcp_error::ERR_INVALID_IP_ADDRESS));
static_assert(Same(::ERR_INVALID_PORT, tcp_error::ERR_INVALID_PORT));
static_assert(Same(::ERR_CONNECTING, tcp_error::ERR_CONNECTING));
static_assert(Same(::ERR_CLOSING, tcp_error::ERR_CLOSING));
static_assert(Same(::ERR_NOT_INITIALIZED, tcp_error::ERR_NOT_INITIALIZED));
static_assert(Same(::ERR_SEND_DATA, tcp_error::ERR_SEND_DATA));
static_assert(Same(::ERR_GET_DATA, tcp_error::ERR_GET_DATA));
static_assert(Same(::ERR_TIMEOUT, tcp_error::ERR_TIMEOUT));
static_assert(Same(::ERR_NO_CONNECTION, tcp_error::ERR_NO_CONNECTION));
static_assert(Same(::ERR_TCP_INVALID_CHARACTERS, tcp_error::ERR_TCP_INVALID_CHARACTERS));

}  // namespace

}  // namespace kesp
