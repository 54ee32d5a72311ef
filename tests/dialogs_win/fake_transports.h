// The transports behind the dialogs; their ports, radio modem and hosts are the unit tests' fakes.
#pragma once

#include <memory>
#include <utility>

#include "network/counting_instrument_fake.h"
#include "network/kesp_tcp.h"
#include "network/socket_control_fake.h"
#include "serial/kesp_com_port.h"
#include "serial/serial_control_fake.h"
#include "support/environment_fake.h"

namespace kesp {

struct NetworkOfFakes {
  EnvironmentFake fakes;
  CKespTCP tcp{fakes.environment,
               [](SocketListener& listener) { return std::make_unique<SocketControlFake>(listener); },
               MakeInstrument};

  NetworkOfFakes() { tcp.SetPort(5025); }
};

// Ports 1, 3 and 7 of the machine are free, all others do not exist; the transport uses port 3 at 57600 baud.
struct PortsOfFakes {
  EnvironmentFake fakes;
  SerialPortsFake ports{fakes.clock};
  CKespCOMPort3 port{fakes.environment, ports};

  PortsOfFakes() {
    fakes.clock.SetStepPerReading(1);
    ports.code = 2;  // no such port
    ports.codes = {{1, 0}, {3, 0}, {7, 0}};
    port.SetMaxBaudRate(EKespBaudRate3::br115200);
    port.SetMinBaudRate(EKespBaudRate3::br300);
    port.SetBaudRate(EKespBaudRate3::br57600);
    port.SetPort(3);
  }

  // Behind the port there is a radio modem that answers what it is asked.
  void ConnectModem() {
    const std::pair<const char*, const char*> answers[] = {
        {"+++", "OK\r"},    {"ATSH\r", "13A200\r"}, {"ATSL\r", "40B0C1D2\r"},
        {"ATPL\r", "4\r"},  {"ATID\r", "3332\r"},   {"ATCH\r", "C\r"},
        {"ATMY\r", "1A\r"}, {"ATCT\r", "64\r"},     {"ATCN\r", "OK\r"}};
    for (const auto& [question, answer] : answers) ports.line.Answer(question, answer);
  }
};

}  // namespace kesp
