# The client matrix in Ruby: client.rb HOST PORT. The cases in their order; cases.rb has what they are made of.
require 'win32ole'
require_relative 'cases'

HOST, PORT = ARGV[0], ARGV[1].to_i
IDENTITY = 'KESP,TORTURE,SIM00666,1.0'.freeze

# The type library's enumerations as constants; Ruby writes the first letter of each large.
module Kesp
end
WIN32OLE.const_load(make('CKespCommObj'), Kesp)

def connected(transport)
  transport.IPAddress = HOST
  transport.Port = PORT
  transport
end

def make_comm
  comm = make('CKespCommObj')
  comm.CommStyle = Kesp::CsTCPIP
  connected(comm.CommObject)
  comm
end

def make_instrument(model)
  instrument = make('CInstrument')
  instrument.Model = model
  instrument
end

show('creation') do
  %w[CKespCommObj CKespTCP CKespCOMPort3 CKespIEEE CInstrument CInstruments].each { |name| make(name) }
  check('the same key') { make('CKespCommObj').GetKey != make('CKespCommObj').GetKey }
  number, = refused('a port switch was made') { make('CKespSmartSwitch3') }
  equal('number', number, -2_147_221_005)
end

show('settings') do
  comm = make_comm
  tcp = comm.CommObject
  equal('CommStyle', comm.CommStyle, 1)
  equal('IPAddress', tcp.IPAddress, HOST)
  equal('Port', tcp.Port, PORT)
  [false, true].each do |ends|
    tcp.TerminateOnEOS = ends
    equal('TerminateOnEOS', tcp.TerminateOnEOS, ends)
  end
  comm.BinaryTimeoutms = 70_000
  equal('BinaryTimeoutms', comm.BinaryTimeoutms, 70_000)
end

show('query') do
  comm = make_comm
  equal('Query', comm.Query('', '*IDN?'), true)
  equal('reply', WIN32OLE::ARGV[0], IDENTITY)
  reply = text_variable
  equal('Query into a variable', comm.Query(reply, '*IDN?'), true)
  equal('reply in a variable', reply.value, IDENTITY)
  equal('CommError', comm.CommError, Kesp::CfrSuccess)
  comm.CommObject.IPAddress = '0.0.0.0'
  equal('Query without an address', comm.Query('', '*IDN?'), false)
  equal('CommErrorDescr', comm.CommErrorDescr, 'Invalid IP Address')
end

show('bytes') do
  comm = make_comm
  equal('QueryBinary', comm.QueryBinary(nil, 'ALLBYTES?'), true)
  equal('reply', WIN32OLE::ARGV[0], (0..255).to_a - [13] + [13])
end

show('error') do
  tcp = make('CKespTCP')
  tcp.Port = 7
  told = refused('Port 0 was taken') { tcp.Port = 0 }
  equal('number, source and text', told, [-2_147_221_263, '[CKespTCP - Port]', 'Invalid Port'])
  equal('Port', tcp.Port, 7)
end

show('events') do
  found, reply, seen = detect { nil }
  equal('AutoDetect', found, true)
  equal('reply', reply, IDENTITY)
  equal('events', seen, [['AutoDetectBegin'], ['AutoDetectUpdate', '*IDN?', HOST, PORT, false], ['AutoDetectEnd']])
end

show('abort') do
  # A handler's hash goes into the arguments of those names.
  found, reply, seen = detect { |event| { 'Abort' => true } if event == 'AutoDetectUpdate' }
  equal('AutoDetect', found, false)
  equal('reply', reply, '')
  equal('events', seen.map(&:first), %w[AutoDetectBegin AutoDetectUpdate AutoDetectEnd])
end

show('collection') do
  instruments = make('CInstruments')
  instruments.AddReference(make_instrument('A'))
  instruments.AddReference(make_instrument('B'), 'rack')
  equal('Count', instruments.Count, 2)
  equal('by position', instruments.Item(1).Model, 'A')
  equal('by key', instruments['rack'].Model, 'B')
  equal('enumerated', instruments.each.map(&:Model), %w[A B])
  instruments.Remove(1)
  equal('left', instruments.Item(1).Model, 'B')
  number, = refused('a ninth item') { instruments.Item(9) }
  equal('number', number & 0xFFFF, 9)
end

show('enumerations') do
  names = %i[CsTCPIP CsNone SckUDPProtocol CfrInvalidIPAddress ToNone]
  equal('values', names.map { |name| Kesp.const_get(name) }, [1, -1, 1, 11, 0])
  comm = make_comm
  comm.CommObject.Protocol = Kesp::SckUDPProtocol
  equal('Protocol', comm.CommObject.Protocol, 1)
  number, = refused('a style 7') { comm.CommStyle = 7 }
  equal('number', number, -2_147_221_304)
end

show('optional') do
  comm = make_comm
  equal('two', comm.Query('', 'ECHO a'), true)
  equal('reply to two', WIN32OLE::ARGV[0], 'ECHO a')
  equal('four', comm.Query('', 'ECHO b', '01', '2.5'), true)
  equal('reply to four', WIN32OLE::ARGV[0], 'ECHO b')
  # Ruby's way to leave one out in the middle.
  equal('four, one of them nil', comm.Query('', 'ECHO c', nil, '2.5'), true)
  equal('reply to four, one of them nil', WIN32OLE::ARGV[0], 'ECHO c')
  instruments = make('CInstruments')
  instruments.AddReference(make_instrument('A'))
  equal('Count', instruments.Count, 1)
  tcp = comm.CommObject
  tcp.Initialize
  equal('none', tcp.WriteLine, true)
  tcp.Uninitialize
end

show('named') do
  reply = text_variable
  equal('Query', make_comm.Query('cmd' => 'ECHO b', 'result' => reply), true)
  equal('reply', reply.value, 'ECHO b')
end

show('objects') do
  1000.times do
    comm = make('CKespCommObj')
    comm.CommStyle = Kesp::CsTCPIP
    comm.ole_free
  end
  comm = make_comm
  equal('Query', comm.Query('', '*IDN?'), true)
  equal('reply', WIN32OLE::ARGV[0], IDENTITY)
end

puts 'DONE'
