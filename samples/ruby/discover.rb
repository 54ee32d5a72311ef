# Finds the instruments on the network and asks each who it is: ruby discover.rb
require 'win32ole'

# The type library's enumerations as constants; Ruby writes the first letter of each large.
module Kesp
end

begin
  tcp = WIN32OLE.new('KespCommObj.CKespTCP')
  WIN32OLE.const_load(tcp, Kesp)
  # One broadcast to everybody, over UDP; what answers is asked over TCP.
  tcp.Protocol = Kesp::SckUDPProtocol
  found = tcp.AutoDetect('')
  tcp.Devices.each do |instrument|
    puts "instrument:  #{instrument.IPAddress}  model #{instrument.Model}  serial #{instrument.Serial}"
  end
  unless found
    puts 'nobody answered'
    exit 1
  end
rescue WIN32OLERuntimeError => e
  puts "error:       #{e.message}"
  exit 2
end
