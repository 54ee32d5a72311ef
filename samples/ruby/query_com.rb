# Asks an instrument at a COM port who it is: ruby query_com.rb [COM port number [bits per second [command]]]
require 'win32ole'

# The type library's enumerations as constants; Ruby writes the first letter of each large.
module Kesp
end

# A text by reference, into which the library writes a reply.
def text_variable
  WIN32OLE_VARIANT.new('', WIN32OLE::VARIANT::VT_BSTR | WIN32OLE::VARIANT::VT_BYREF)
end

# The range comes first: a rate outside of it is refused. A rate is set by its number, which has the rate as its name.
def set_baud_rate(line, baud)
  line.MaxBaudRate = Kesp::Br921600
  line.MinBaudRate = Kesp::Br150
  rate = (Kesp::Br150..Kesp::Br921600).find { |one| line.BaudRateName(one) == baud }
  raise ArgumentError, "#{baud} is not a bit rate of this library" unless rate

  line.BaudRate = rate
end

port, baud, command = ARGV
begin
  comm = WIN32OLE.new('KespCommObj.CKespCommObj')
  WIN32OLE.const_load(comm, Kesp)
  comm.CommStyle = Kesp::CsRS232
  comm.CommObject.Port = (port || 1).to_i
  set_baud_rate(comm.CommObject, baud || '9600')

  reply = text_variable
  # The arguments by their names, so that their order does not matter.
  if comm.Query(cmd: command || '*IDN?', result: reply)
    puts "reply:       #{reply.value}"
  else
    puts "failed:      #{comm.CommError} #{comm.CommErrorSource} #{comm.CommErrorDescr}"
    exit 1
  end
rescue WIN32OLERuntimeError, ArgumentError => e
  puts "error:       #{e.message}"
  exit 2
end
